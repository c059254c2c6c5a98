// One reference or number of the room altered at a time: dropped, doubled, emptied, or put in the
// place of another. The check must find something for every one, but for those that are listed at
// the end, each with the reason why it cannot be wrong in itself.
#include <gtest/gtest.h>

#include <map>

#include "plant/plant_fixture.h"

using plant_fixture::condMapOf;
using plant_fixture::Room;
using plant_fixture::Texts;

namespace {

struct Alteration {
    std::string name;
    std::function<void(Room&)> apply;
};

using Alterations = std::vector<Alteration>;

std::string at(std::string const& list, std::size_t i) {
    return list + "[" + std::to_string(i) + "]";
}

template <typename Entries>
void drop(Entries& entries, std::size_t i) {
    entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(i));
}

// ---- Lists and pools ----

// *list* answers the list of a room; the room given here is for its length.
template <typename List>
void alterOrder(Alterations& all, Room& room, std::string const& name, List list) {
    std::size_t const size = list(room).size();
    for (std::size_t i = 0; i < size; ++i) {
        all.push_back({"drop " + at(name, i), [=](Room& r) { drop(list(r), i); }});
        if (i + 1 < size)
            all.push_back({"swap " + at(name, i) + " with the next",
                           [=](Room& r) { std::swap(list(r)[i], list(r)[i + 1]); }});
    }
}

template <typename List>
void alterReferences(Alterations& all, Room& room, std::string const& name, List list) {
    alterOrder(all, room, name, list);
    for (std::size_t i = 0; i < list(room).size(); ++i) {
        all.push_back({"empty " + at(name, i), [=](Room& r) { list(r)[i] = nullptr; }});
        all.push_back({"double " + at(name, i), [=](Room& r) { list(r).push_back(list(r)[i]); }});
    }
}

// Each number dropped, and one higher and one lower.
template <typename List>
void alterNumbers(Alterations& all, Room& room, std::string const& name, List list) {
    for (std::size_t i = 0; i < list(room).size(); ++i) {
        all.push_back({"drop " + at(name, i), [=](Room& r) { drop(list(r), i); }});
        for (int const by : {-1, 1})
            all.push_back({"add " + std::to_string(by) + " to " + at(name, i),
                           [=](Room& r) { list(r)[i] += by; }});
    }
}

void alterLists(Alterations& all, Room& room) {
    alterReferences(
        all, room, "condi", [](Room & r) -> auto& { return r.rt().condi; });
    alterReferences(
        all, room, "display", [](Room & r) -> auto& { return r.rt().display; });
    alterReferences(
        all, room, "measure", [](Room & r) -> auto& { return r.rt().measure; });
    alterReferences(
        all, room, "temporal", [](Room & r) -> auto& { return r.rt().temporal; });
    alterReferences(
        all, room, "untemporal", [](Room & r) -> auto& { return r.rt().untemporal; });
    alterReferences(
        all, room, "gV", [](Room & r) -> auto& { return r.rt().gV; });
    alterReferences(
        all, room, "aC", [](Room & r) -> auto& { return r.rt().aC; });
    alterOrder(
        all, room, "init", [](Room & r) -> auto& { return r.rt().init; });
    alterOrder(
        all, room, "dico", [](Room & r) -> auto& { return r.rt().dico; });
    alterOrder(
        all, room, "influ", [](Room & r) -> auto& { return r.rt().influ; });
    alterOrder(
        all, room, "cG", [](Room & r) -> auto& { return r.rt().cG; });
    alterOrder(
        all, room, "condPool", [](Room & r) -> auto& { return r.rt().condPool; });
    alterOrder(
        all, room, "exprPool", [](Room & r) -> auto& { return r.rt().exprPool; });
    alterOrder(
        all, room, "gvPool", [](Room & r) -> auto& { return r.rt().gvPool; });
    all.push_back({"move untemporal[0] to temporal", [](Room& r) {
                       r.rt().temporal.push_back(r.rt().untemporal[0]);
                       drop(r.rt().untemporal, 0);
                   }});
    all.push_back({"move untemporal[1] to temporal", [](Room& r) {
                       r.rt().temporal.push_back(r.rt().untemporal[1]);
                       drop(r.rt().untemporal, 1);
                   }});
    all.push_back({"move temporal[0] to untemporal", [](Room& r) {
                       r.rt().untemporal.push_back(r.rt().temporal[0]);
                       r.rt().temporal.clear();
                   }});
    all.push_back({"arrange dico otherwise", [](Room& r) {
                       std::swap(r.rt().dico[1], r.rt().dico[2]);
                       std::swap(r.rt().dico[1]->slot, r.rt().dico[2]->slot);
                   }});
}

// ---- Variables ----

void alterVariables(Alterations& all, Room& room) {
    for (std::size_t i = 0; i < room.rt().dico.size(); ++i) {
        std::string const nom = room.rt().dico[i]->nom;
        auto const of = [=](auto act) { return [=](Room& r) { act(*r.rt().dico[i]); }; };
        alterNumbers(
            all, room,
            nom + ".varConds", [i](Room & r) -> auto& { return r.rt().dico[i]->varConds; });
        all.push_back({nom + " without a name", of([](s_Variable& v) { v.nom.clear(); })});
        all.push_back({nom + " as a parameter or none",
                       of([](s_Variable& v) { v.isParam = 1 - v.isParam; })});
        all.push_back({nom + " with a short history", of([](s_Variable& v) {
                           v.histo = v.mesHisto = History<s_Objet>(299);
                           v.lowHisto = v.highHisto = History<int>(299);
                       })});
        all.push_back({nom + " without measures of the past",
                       of([](s_Variable& v) { v.mesHisto = History<s_Objet>(1); })});
        all.push_back({nom + " without a value or a domain", of([](s_Variable& v) {
                           v.old = s_Objet{};
                           v.domain.reset();
                       })});
        if (room.rt().dico[i]->graph != nullptr)
            all.push_back({nom + " without a node", of([](s_Variable& v) { v.graph = nullptr; })});
    }
    all.push_back(
        {"two variables of one name", [](Room& r) { r.variable("room.m")->nom = "room.x"; }});
    all.push_back({"an initial value for another variable",
                   [](Room& r) { r.rt().init[0].var = r.variable("room.xd"); }});
    all.push_back({"an initial value of another range",
                   [](Room& r) { r.rt().init[0].value = makeReal(12.0); }});
    all.push_back(
        {"an initial value that is none", [](Room& r) { r.rt().init[0].value = s_Objet{}; }});
}

// ---- Influences and the graph ----

void alterInfluence(Alterations& all, Room& room, std::size_t i) {
    std::string const nom = room.rt().influ[i]->nom;
    auto const add = [&](std::string const& what, std::function<void(s_Influence&, Room&)> act) {
        all.push_back({nom + " " + what, [=](Room& r) { act(*r.rt().influ[i], r); }});
    };
    add("without a cause", [](auto& in, Room&) { in.cause = nullptr; });
    add("without an effect", [](auto& in, Room&) { in.effect = nullptr; });
    add("with another cause", [](auto& in, Room& r) { in.cause = r.variable("room.Qc"); });
    add("with another effect", [](auto& in, Room& r) {
        in.effect = r.variable(in.effect->nom == "room.x" ? "room.xd" : "room.x");
    });
    add("without a condition", [](auto& in, Room&) { in.cond = nullptr; });
    add("under another condition", [](auto& in, Room& r) { in.cond = r.rt().condi[13]; });
    add("of another kind",
        [](auto& in, Room&) { in.type = in.type == INF_INTEGRAL ? INF_STATIC : INF_INTEGRAL; });
    add("without a gain", [](auto& in, Room&) { in.gain = s_Objet{}; });
    add("with a delay behind the history",
        [](auto& in, Room&) { in.delayMin = in.delayMax = 302; });
    add("with a delay that ends before it begins", [](auto& in, Room&) { ++in.delayMin; });
    add("with a cycle more of delay", [](auto& in, Room&) {
        ++in.delayMin;
        ++in.delayMax;
    });
    add("with a cycle less of delay", [](auto& in, Room&) {
        --in.delayMin;
        --in.delayMax;
    });
    add("with too few past conditions", [](auto& in, Room&) { ++in.condHistoLn; });
    add("searched or not", [](auto& in, Room&) { in.useOpti = 1 - in.useOpti; });
}

void alterInfluences(Alterations& all, Room& room) {
    for (std::size_t i = 0; i < room.rt().influ.size(); ++i)
        alterInfluence(all, room, i);
    for (std::size_t i = 0; i < room.rt().cG.size(); ++i) {
        std::string const node = at("cG", i);
        alterReferences(
            all, room, node + ".causes", [i](Room & r) -> auto& { return r.rt().cG[i]->causes; });
        alterReferences(
            all, room, node + ".effects", [i](Room & r) -> auto& { return r.rt().cG[i]->effects; });
        if (!room.rt().cG[i]->causes.empty())
            all.push_back(
                {node + " of another kind", [i](Room& r) { r.rt().cG[i]->kind = INF_DYNAMIC; }});
    }
}

// ---- Conditions and constraints ----

void alterCondition(Alterations& all, Room& room, std::size_t i) {
    s_Condition const& given = *room.rt().condPool[i];
    auto const add = [&](std::string const& what, std::function<void(s_Condition&, Room&)> act) {
        all.push_back(
            {at("condPool", i) + " " + what, [=](Room& r) { act(*r.rt().condPool[i], r); }});
    };
    alterNumbers(
        all, room,
        at("condPool", i) + ".acIdx", [i](Room & r) -> auto& { return r.rt().condPool[i]->acIdx; });
    add("of no kind", [](auto& c, Room&) { c.kind = 0; });
    if (given.atom != nullptr) {
        add("without its atom", [](auto& c, Room&) { c.atom = nullptr; });
        add("with another atom",
            [](auto& c, Room&) { c.atom = c.atom->getSiblings()[c.atom->linkIndex == 0 ? 1 : 0]; });
    }
    if (given.kind == COND_OR || given.kind == COND_AND) {
        add("without its left operand", [](auto& c, Room&) { c.left = nullptr; });
        add("without its right operand", [](auto& c, Room&) { c.right = nullptr; });
        add("with itself as operand", [](auto& c, Room&) { c.left = &c; });
    }
    if (given.kind == COND_EXPR) {
        add("without its variable", [](auto& c, Room&) { c.var = nullptr; });
        add("with another variable", [](auto& c, Room& r) { c.var = r.variable("room.xd"); });
        add("without a relation", [](auto& c, Room&) { c.op = 0; });
        add("with the opposite relation",
            [](auto& c, Room&) { c.op = c.op == REL_LT ? REL_GE : REL_LT; });
        add("without its constraint", [](auto& c, Room&) { c.expr = nullptr; });
        add("with another constraint",
            [](auto& c, Room& r) { c.expr = r.rt().aC[c.acIdx[0] == 0 ? 1 : 0]; });
    }
}

void alterConstraints(Alterations& all, Room& room) {
    alterNumbers(
        all, room, "gV[0].acIdx", [](Room & r) -> auto& { return r.rt().gV[0]->acIdx; });
    for (std::size_t i = 0; i < room.rt().aC.size(); ++i) {
        auto const add = [&](std::string const& what, std::function<void(s_Expr&)> act) {
            all.push_back({at("aC", i) + " " + what, [=](Room& r) { act(*r.rt().aC[i]); }});
        };
        add("on no variable", [](s_Expr& e) { e.gvar = nullptr; });
        add("without its left operand", [](s_Expr& e) { e.left = nullptr; });
        add("without its right operand", [](s_Expr& e) { e.right = nullptr; });
        add("of no operator", [](s_Expr& e) { e.op = 8; });
        add("as a difference", [](s_Expr& e) { e.op = EXPR_SUB; });
        add("at a higher threshold", [](s_Expr& e) { e.left->gvar->value.real += 0.5; });
        add("at a lower threshold", [](s_Expr& e) { e.left->gvar->value.real -= 0.5; });
        add("with the other bracket", [](s_Expr& e) {
            range& space = e.right->gvar->value.rng;
            unsigned char& bracket = space.inf == 0.0 ? space.infClosed : space.supClosed;
            bracket = static_cast<unsigned char>(1 - bracket);
        });
        add("with a threshold that is none", [](s_Expr& e) { e.left->gvar->value = s_Objet{}; });
    }
    all.push_back(
        {"gV[0] of another variable", [](Room& r) { r.rt().gV[0]->var = r.variable("room.xd"); }});
    all.push_back({"gV[0] of no variable", [](Room& r) { r.rt().gV[0]->var = nullptr; }});
}

// ---- Links, arrays, clauses ----

void alterLinks(Alterations& all) {
    for (char const* id :
         {"thermostat.mode=off", "thermostat.mode=on", "thermostat.mode=stuck_on",
          "thermostat.mode=stuck_off", "thermostat.mode=unknown", "room.c1=c12", "room.c1=c11",
          "room.c1=c10", "room.mode=closed", "room.mode=open", "room.mode=unknown"}) {
        std::string const name = id;
        auto const links = [name](Room& r) -> CondMap& {
            return condMapOf(r.atom(name)->getStateVar());
        };
        auto const key = [name](Room& r) { return r.atom(name)->getId(); };
        all.push_back({name + " without its link", [=](Room& r) { links(r).erase(key(r)); }});
        for (int const by : {-1, 1})
            all.push_back({name + " linked " + std::to_string(by) + " beside",
                           [=](Room& r) { links(r).find(key(r))->second += by; }});
        all.push_back({name + " not marked", [=](Room& r) { r.atom(name)->bridged = false; }});
        all.push_back({name + " not linked at all", [=](Room& r) {
                           links(r).erase(key(r));
                           r.atom(name)->bridged = false;
                       }});
    }
    all.push_back(
        {"a command that is marked", [](Room& r) { r.atom("room.cmdin=open")->bridged = true; }});
}

void alterArrays(Alterations& all, Room& room) {
    for (auto const array : {&s_runtime::dinfval, &s_runtime::dsupval})
        all.push_back({"a shorter array of bounds", [=](Room& r) { (r.rt().*array).pop_back(); }});
    for (auto const array : {&s_runtime::lowalarm, &s_runtime::highalarm, &s_runtime::meslowmisb,
                             &s_runtime::meshighmisb, &s_runtime::mesmisb, &s_runtime::condin,
                             &s_runtime::condout, &s_runtime::valSpc, &s_runtime::ccAgenda})
        all.push_back({"a shorter array", [=](Room& r) { (r.rt().*array).pop_back(); }});
    all.push_back({"no sample period", [](Room& r) { r.rt().Ts = 0.0; }});
    all.push_back({"no window", [](Room& r) { r.rt().twc = 0; }});
    for (std::size_t i = 0; i < room.clauses().size(); ++i)
        all.push_back({"drop " + at("clauses", i), [=](Room& r) { drop(r.clauses(), i); }});
}

Alterations allAlterations() {
    Room room;
    Alterations all;
    alterLists(all, room);
    alterVariables(all, room);
    alterInfluences(all, room);
    for (std::size_t i = 0; i < room.rt().condPool.size(); ++i)
        alterCondition(all, room, i);
    alterConstraints(all, room);
    alterLinks(all);
    alterArrays(all, room);
    return all;
}

// ---- Legal ones ----

using Reasons = std::map<std::string, char const*>;

void addLegalOrders(Reasons& legal) {
    legal["swap condi[7] with the next"] = "nothing refers to either of them by its number";
    legal["swap condi[14] with the next"] = legal["swap condi[7] with the next"];
    legal["swap display[0] with the next"] = "what is displayed in which order is free";
    legal["arrange dico otherwise"] = "nothing refers to variables by their number";
    legal["move untemporal[0] to temporal"] =
        "the driving difference reads the cycle before, which both lists see alike";
    char const* const sum = "the causes of a static variable are added up, in any order";
    for (char const* causes :
         {"cG[1].causes[0]", "cG[1].causes[1]", "cG[3].causes[0]", "cG[3].causes[1]"})
        legal["swap " + std::string(causes) + " with the next"] = sum;
    legal["swap cG[3].effects[0] with the next"] = "the order of effects is that of printing";
}

void addLegalInfluences(Reasons& legal) {
    for (char const* nom : {"T1.i1", "R1.i1", "R1.i2", "R1.i3", "R1.i4", "R1.i5", "R1.i6"})
        legal[std::string(nom) + " searched or not"] = "the search only sharpens bounds";
    // Not those of T1.i1 and R1.i1: no other influence has their condition, which is then useless.
    for (char const* nom : {"R1.i2", "R1.i3", "R1.i4", "R1.i5", "R1.i6"}) {
        legal[std::string(nom) + " without a condition"] = "an influence may act always";
        legal[std::string(nom) + " under another condition"] =
            "when an influence acts is the model's to say";
    }
    legal["R1.i3 with a cycle more of delay"] = "a static delay of 1 reads the value before";
    legal["R1.i6 with a cycle less of delay"] = "the temperature is updated before what reads it";
}

Reasons legalAlterations() {
    Reasons legal;
    addLegalOrders(legal);
    addLegalInfluences(legal);
    for (char const* nom :
         {"thermostat.h", "room.xext", "room.Qc", "room.Qo", "room.m", "room.M", "room.un"})
        legal[std::string(nom) + " with a short history"] = "that of a parameter is never read";
    // The operands of their own of the two disjunctions: heating, and a known window.
    for (char const* operand : {"condPool[9]", "condPool[10]", "condPool[17]", "condPool[18]"})
        legal[std::string(operand) + " with another atom"] =
            "which modes an influence asks for is the model's to say";
    return legal;
}

TEST(Alterations, EveryOneIsFoundUnlessItCannotBeWrong) {
    Reasons const legal = legalAlterations();
    Reasons unmet = legal;
    for (Alteration const& alteration : allAlterations()) {
        Room room;
        alteration.apply(room);
        bool const found = !room.findings().empty();
        bool const listed = legal.count(alteration.name) != 0;
        unmet.erase(alteration.name);
        EXPECT_NE(found, listed) << alteration.name
                                 << (found ? ": found, and listed as legal" : ": not found");
    }
    for (auto const& entry : unmet)
        ADD_FAILURE() << "no such alteration: " << entry.first;
}

}  // namespace
