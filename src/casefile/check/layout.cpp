#include "casefile/check/layout.hpp"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <string>

namespace lf::check {

namespace {

// A layout as text: the fields as "kind name" words, statements separated
// by "|", and the names of the fields that the checks look at.
struct LayoutText {
  std::string_view ext, fields, kept;
};
constexpr LayoutText kLayouts[] = {
    {".L0",
     "I nbus I nacline I ntrans I ndcline I ngenerat I nload I narea I nl9 I nlf93spare I nswitch "
     "I ctrl_fact | R base_mva R vmax R vmin R tolerance I method I iteration I ctrl_area "
     "I ctrl_ud I unused I ctrl_sub",
     "nbus nacline ntrans ndcline ngenerat nload narea nswitch ctrl_fact ctrl_sub"},
    {".L1", "T busname R basekv I busarea R vmax_kv R vmin_kv", "busname vmax_kv vmin_kv"},
    {".L2",
     "I mark I I I J I No R R R X R B I LOSSAREA I mode_ctrl I par_group I ibs_ctrl I line_ctrl "
     "R value_ctrl",
     "mark I J R X"},
    {".L3",
     "I mark I I I J I No R R R X R T R Rm R Xm I LOSSAREA I mode_ctrl I par_group R unused "
     "I ibs_ctrl I line_ctrl R value_ctrl R ang_shift",
     "mark I J R X"},
    {".NL4",
     "I mark I I I J I No I LOSSAREA | R rpi_ohm R lpi_mh R rpj_ohm R lpj_mh R rl_ohm R ll_mh "
     "R rei_ohm R rej_ohm R lsi_mh R lsj_mh | R vdrate_kv | R vhi_kv R vli_kv I i_bridge "
     "R sti_mva R rti_ohm R xti_perc R vtimax_kv R vtimin_kv I i_tap | R vhj_kv R vlj_kv "
     "I j_bridge R stj_mva R rtj_ohm R xtj_perc R vtjmax_kv R vtjmin_kv I j_tap | I op_mode "
     "R qci_mvar R qcj_mvar | R pd1_mw R vd1_kv R a1min_d R a10_d R gam1min_d R gam10_d | "
     "R pd2_mw R vd2_kv R a2min_d R a20_d R gam2min_d R gam20_d",
     "mark I J"},
    {".L5",
     "I mark I ibs I mode_ctrl R P R Q R V R Angle R Qmax R Qmin R Pmax R Pmin I par_group "
     "I ibs_ctrl I line_ctrl R value_ctrl",
     "mark ibs mode_ctrl Qmax Qmin Pmax Pmin"},
    {".L6",
     "I mark I ibs I No I mode_ctrl R P R Q R V R Angle R Qmax R Qmin R Pmax R Pmin I par_group "
     "I ibs_ctrl I line_ctrl R value_ctrl",
     "mark ibs mode_ctrl Qmax Qmin Pmax Pmin"},
    {".L7", "I mark I area_no T area_name I unit R p_schedule R tolerance R pmax", "mark"},
    {".L10", "I mark I area R kv T name1 T name2 R PG R QG R PL R QL", "mark"},
    {".L13", "I valid I type I I I J I sw1 I sw2 I sw3 I line1 I load1 I line2 I load2",
     "valid type I J"},
    {".L13G", "I group", "group"},
    {".DAT", "R ap R bp R cp R fp R np R aq R bq R cq R fq R nq", ""},
    {".DATH", "I size1 I size2 I size3 I size4 I size5 I size6 I size7 I size8 I nloadpar I unused",
     "size1 size2 size3 size4 size5 size6 size7 size8 nloadpar"},
};

// Whether name is one of the blank-separated words of list.
bool listed(std::string_view list, std::string_view name) {
  for (std::size_t pos = 0; pos < list.size();) {
    const std::size_t end = std::min(list.find(' ', pos), list.size());
    if (list.substr(pos, end - pos) == name) return true;
    pos = end + 1;
  }
  return false;
}

Layout parse(const LayoutText& t) {
  const std::string_view text = t.fields;
  Layout l{t.ext, {{}}, 0, 0, 0};
  std::size_t pos = 0;
  while (pos < text.size()) {
    const std::size_t end = std::min(text.find(' ', pos), text.size());
    const std::string_view word = text.substr(pos, end - pos);
    pos = end + 1;
    if (word.empty()) continue;
    if (word == "|") {
      l.statements.emplace_back();
    } else if (word.size() == 1) {
      if (l.statements.back().size() == kMostFields)
        throw std::logic_error("too many fields in one statement of " + std::string(t.ext));
      const std::size_t name_end = std::min(text.find(' ', pos), text.size());
      const std::string_view name = text.substr(pos, name_end - pos);
      const bool kept = listed(t.kept, name);
      std::size_t& count = word[0] == 'T' ? l.texts : l.values;
      l.statements.back().push_back({name, word[0], kept, kept ? count : 0});
      if (kept) ++count;
      ++l.fields;
      pos = name_end + 1;
    }
  }
  return l;
}

}  // namespace

std::size_t Layout::at(std::string_view name) const {
  for (const auto& statement : statements)
    for (const Field& f : statement) {
      // Size and first letter first: most names differ there already.
      if (f.kept && f.kind != 'T' && f.name.size() == name.size() && f.name[0] == name[0] &&
          f.name == name)
        return f.slot;
    }
  throw std::logic_error("no kept field " + std::string(name) + " in " + std::string(ext));
}

std::size_t Layout::slot(std::string_view name) const {
  for (const auto& statement : statements)
    for (const Field& f : statement)
      if (f.kept && f.kind == 'T' && f.name == name) return f.slot;
  throw std::logic_error("no kept text field " + std::string(name) + " in " + std::string(ext));
}

const Layout& layout(std::string_view ext) {
  static const std::map<std::string_view, Layout> all = [] {
    std::map<std::string_view, Layout> m;
    for (const LayoutText& t : kLayouts) m.emplace(t.ext, parse(t));
    return m;
  }();
  return all.at(ext);
}

}  // namespace lf::check
