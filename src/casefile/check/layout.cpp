#include "casefile/check/layout.hpp"

#include <map>
#include <stdexcept>
#include <string>

namespace lf::check {

namespace {

// Fields as "kind name" words, statements separated by "|".
constexpr std::pair<std::string_view, std::string_view> kLayouts[] = {
    {".L0",
     "I nbus I nacline I ntrans I ndcline I ngenerat I nload I narea I nl9 I nlf93spare I nswitch "
     "I ctrl_fact | R base_mva R vmax R vmin R tolerance I method I iteration I ctrl_area "
     "I ctrl_ud I unused I ctrl_sub"},
    {".L1", "T busname R basekv I busarea R vmax_kv R vmin_kv"},
    {".L2",
     "I mark I I I J I No R R R X R B I LOSSAREA I mode_ctrl I par_group I ibs_ctrl I line_ctrl "
     "R value_ctrl"},
    {".L3",
     "I mark I I I J I No R R R X R T R Rm R Xm I LOSSAREA I mode_ctrl I par_group R unused "
     "I ibs_ctrl I line_ctrl R value_ctrl R ang_shift"},
    {".NL4",
     "I mark I I I J I No I LOSSAREA | R rpi_ohm R lpi_mh R rpj_ohm R lpj_mh R rl_ohm R ll_mh "
     "R rei_ohm R rej_ohm R lsi_mh R lsj_mh | R vdrate_kv | R vhi_kv R vli_kv I i_bridge "
     "R sti_mva R rti_ohm R xti_perc R vtimax_kv R vtimin_kv I i_tap | R vhj_kv R vlj_kv "
     "I j_bridge R stj_mva R rtj_ohm R xtj_perc R vtjmax_kv R vtjmin_kv I j_tap | I op_mode "
     "R qci_mvar R qcj_mvar | R pd1_mw R vd1_kv R a1min_d R a10_d R gam1min_d R gam10_d | "
     "R pd2_mw R vd2_kv R a2min_d R a20_d R gam2min_d R gam20_d"},
    {".L5",
     "I mark I ibs I mode_ctrl R P R Q R V R Angle R Qmax R Qmin R Pmax R Pmin I par_group "
     "I ibs_ctrl I line_ctrl R value_ctrl"},
    {".L6",
     "I mark I ibs I No I mode_ctrl R P R Q R V R Angle R Qmax R Qmin R Pmax R Pmin I par_group "
     "I ibs_ctrl I line_ctrl R value_ctrl"},
    {".L7", "I mark I area_no T area_name I unit R p_schedule R tolerance R pmax"},
    {".L10", "I mark I area R kv T name1 T name2 R PG R QG R PL R QL"},
    {".L13", "I valid I type I I I J I sw1 I sw2 I sw3 I line1 I load1 I line2 I load2"},
    {".L13G", "I group"},
    {".DAT", "R ap R bp R cp R fp R np R aq R bq R cq R fq R nq"},
    {".DATH",
     "I size1 I size2 I size3 I size4 I size5 I size6 I size7 I size8 I nloadpar I unused"},
};

Layout parse(std::string_view ext, std::string_view text) {
  Layout l{ext, {{}}, 0, 0};
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
        throw std::logic_error("too many fields in one statement of " + std::string(ext));
      const std::size_t name_end = std::min(text.find(' ', pos), text.size());
      l.statements.back().push_back({text.substr(pos, name_end - pos), word[0], l.texts});
      ++l.fields;
      if (word[0] == 'T') ++l.texts;
      pos = name_end + 1;
    }
  }
  return l;
}

}  // namespace

std::size_t Layout::at(std::string_view name) const {
  std::size_t k = 0;
  for (const auto& statement : statements)
    for (const Field& f : statement) {
      // Size and first letter first: most names differ there already.
      if (f.name.size() == name.size() && f.name[0] == name[0] && f.name == name) return k;
      ++k;
    }
  throw std::logic_error("no field " + std::string(name) + " in " + std::string(ext));
}

std::size_t Layout::slot(std::string_view name) const {
  for (const auto& statement : statements)
    for (const Field& f : statement)
      if (f.kind == 'T' && f.name == name) return f.slot;
  throw std::logic_error("no text field " + std::string(name) + " in " + std::string(ext));
}

const Layout& layout(std::string_view ext) {
  static const std::map<std::string_view, Layout> all = [] {
    std::map<std::string_view, Layout> m;
    for (const auto& [e, text] : kLayouts) m.emplace(e, parse(e, text));
    return m;
  }();
  return all.at(ext);
}

}  // namespace lf::check
