// The records of the user-defined models.
#include "control/udblock.hpp"
#include "control/udmodel.hpp"

namespace lf {

UDXYRec UDXY;
UDBRec UDB;
Arr<double> NUPA;
NU1Rec NU1;
NNU1Rec NNU1;
COMM7Rec COMM7;
NOST1Rec NOST1;
UDKEEPRec UDKEEP;

S9Rec S9;
L9Rec L9;
UDRRec UDR;
UDINRec UDIN;
UDOURec UDOU;
YPRec YP;
TYPEIRec TYPEI;
DTBADRec DTBAD;
Arr2<double> DTDEE;
TMPUDRec TMPUD;
std::array<Arr<double>, 10> BINTFA;
Arr<Text<10>> FUDLF;
int32_t IFUDLF = 0;

}  // namespace lf
