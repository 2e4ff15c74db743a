// Network preparation: turns the network as read into the network that is
// solved.  Substations are split by their switch positions, the loads and the
// generators of a bus are merged into one each, opened line ends become new
// nodes behind weak links, and islands without a path to earth get a weak
// shunt.  New nodes are numbered above NNTOON.nbase; NNTOON gives the case bus
// that each node stands for.
#pragma once

#include <cstdint>

#include "store/store.hpp"
#include "support/arr.hpp"

namespace lf {

// The whole stage: substations, merging, opened ends, islands.
void dwsubij();

// Appends a branch to ground for each transformer whose magnetising
// impedance is not negligible, and sets NO.nbranch.
void dwrmxm();

// ---- substations ----------------------------------------------------------

// Splits each substation group of L13 into its connected components; the
// first keeps the bus number, the others become new nodes.
void dwbus();
// Moves the branches and loads at the taps of switch strings, and those that
// hang on a split end, to the node that now holds them.
void chl23();
// Adds a node that stands for the given node's bus, named after it; returns
// its number.
int32_t addnode(int32_t bus);
// Name of new node n from the bus name: "_" and the number in the first ten
// places, the number's field being sized by repeated division by 20.
void addname(const BusName& name, int32_t n, BusName& result);

// ---- graph walks ----------------------------------------------------------

// Incidence of a graph of m edges I(k)-J(k) on nodes 1..n: ends(k) = I(k),
// ends(2m + 1 - k) = J(k); the positions in ends of node v are
// list(start(v)) .. list(start(v + 1) - 1).  The arrays are grown as needed.
void eqno12(int32_t m, int32_t n, const Arr<int32_t>& I, const Arr<int32_t>& J, Arr<int32_t>& ends,
            Arr<int32_t>& start, Arr<int32_t>& list);
// Breadth-first walk from node from along edges whose state is non-zero;
// reached(1..count) are the nodes visited, in rising order of number.
void eqno4(int32_t n, int32_t m, const Arr<int32_t>& ends, const Arr<int32_t>& state,
           const Arr<int32_t>& start, const Arr<int32_t>& list, int32_t from, Arr<int32_t>& reached,
           int32_t& count);
// flag is 0 when node is among reached(1..count), else 1.
void inout(int32_t node, int32_t count, const Arr<int32_t>& reached, int32_t& flag);

// ---- merging --------------------------------------------------------------

// Folds the loads of one bus into one, keeping the loads as read in L6PP.
void dwload();
// Folds the generators of one bus into one, keeping the generators as read in
// L5OLD with the index of their merged generator and their share of it.
void dwgen();

// ---- opened ends, islands, the change list -------------------------------

constexpr double kDeleteMark = -100000.0;  // X of a change that deletes a branch
constexpr double kWeakLinkX = 100000.0;    // X of the link to an opened end's node
constexpr double kWeakShuntX = 999999.0;   // X of the shunt that grounds an island

// Turns each line end opened in IJOPEN into a new node joined by a weak link.
void eijop();
// Gives every island without a grounded branch a weak shunt.
void insulat();
// Applies the change list ijc/rxc (nchange entries) to the branch list
// ijb/rxb (nbranch branches) and leaves in ijc/rxc the list that undoes it.
void chrx(int32_t& nbranch, int32_t& nchange, IJRec& ijb, RXRec& rxb, IJRec& ijc, RXRec& rxc);

}  // namespace lf
