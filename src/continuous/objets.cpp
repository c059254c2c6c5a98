// Making, copying and bounds of the values, and the constants.
//
// The constants are initialised at compile time, so that initialisers of other files may already
// use them.

#include "continuous/objets.h"

namespace {

constinit s_Objet const zero = makeReal(0.0);
constinit s_Objet const un = makeReal(1.0);
constinit s_Objet const dix = makeReal(10.0);
constinit s_Objet const whole = makeRange(-DBL_MAX, DBL_MAX, 0, 0);

}  // namespace

constinit s_Objet const* const objZero = &zero;
constinit s_Objet const* const objUn = &un;
constinit s_Objet const* const objDix = &dix;
constinit s_Objet const* const objMax = &whole;

s_Objet mkObjReal(double value) {
    return makeReal(value);
}

s_Objet sn_mkSpObjet(double lo, double hi) {
    return makeRange(lo, hi, 0, 0);
}

std::optional<s_Objet> copyObjet(s_Objet const* o) {
    return o != nullptr ? std::optional<s_Objet>(*o) : std::nullopt;
}

void sn_putObjet(s_Objet const* source, s_Objet* destination) {
    *destination = *source;
}

double sn_infOf(s_Objet const& o) {
    if (isReal(o))
        return o.real;
    return isRange(o) ? o.rng.inf : 0.0;
}

double sn_supOf(s_Objet const& o) {
    if (isReal(o))
        return o.real;
    return isRange(o) ? o.rng.sup : 0.0;
}

void sn_setInf(s_Objet* o, double inf) {
    if (isReal(*o))
        o->real = inf;
    else if (isRange(*o))
        o->rng.inf = inf;
}

void sn_setSup(s_Objet* o, double sup) {
    if (isRange(*o))
        o->rng.sup = sup;
}

void sn_setBounds(s_Objet* o, double inf, double sup) {
    o->type = OBJ_RANGE;
    o->rng.inf = inf;
    o->rng.sup = sup;
}
