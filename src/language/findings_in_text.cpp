// From the names in a finding to places of the text.
//
// A finding is a sentence that begins with the element that it is about, or names it: "Variable
// room.x has no causes ..: give it one." The part behind its last colon is the advice.
#include "language/findings_in_text.h"

#include <cctype>
#include <map>

#include "language/lower.h"
#include "plant/check.h"
#include "reasoning/Scheduler.h"
#include "support/host.h"

namespace {

// The places of everything that a finding can name, by its name.
class Places {
public:
    explicit Places(FlatPlant const& flat) : whole(flat.nameRange) {
        for (FlatComponent const& component : flat.components) {
            enter(component.name, component.range);
            enter(component.symbol, component.range);
        }
        for (FlatQuantity const& quantity : flat.quantities)
            enter(flat.fullName(quantity), quantity.range);
        for (FlatChoice const& choice : flat.choices) {
            enter(flat.fullName(choice), choice.range);
            for (FlatChoice::Value const& value : choice.values)
                enter(flat.fullName(choice) + "=" + value.name, value.range);
        }
        for (FlatInfluence const& influence : flat.influences)
            enter(influence.name, influence.range);
        std::map<ComponentRef, int> count;
        for (FlatMove const& move : flat.moves)
            enter(std::string("Transition ") + std::to_string(count[move.component]++) + " of " +
                      flat.nameOf(move.component),
                  move.range);
    }

    // A transition by its number, else the first name in the sentence.
    TextRange of(std::string const& sentence) const {
        if (sentence.rfind("Transition ", 0) == 0) {
            std::size_t const end = sentence.find(' ', sentence.find(" of ") + 4);
            if (auto const found = places.find(sentence.substr(0, end)); found != places.end())
                return found->second;
        }
        for (std::size_t begin = 0; begin < sentence.size();) {
            std::size_t const end = std::min(sentence.find(' ', begin), sentence.size());
            std::string word = sentence.substr(begin, end - begin);
            while (!word.empty() && std::string(",.:;()").find(word.back()) != std::string::npos)
                word.pop_back();
            if (auto const found = places.find(word); found != places.end())
                return found->second;
            begin = end + 1;
        }
        return whole;
    }

private:
    void enter(std::string const& name, TextRange const& range) { places.insert({name, range}); }

    TextRange whole;
    std::map<std::string, TextRange> places;
};

void tell(Finding const& finding, Places const& places, Messages& messages) {
    std::string text = finding.text, advice;
    if (std::size_t const colon = text.rfind(": "); colon != std::string::npos) {
        advice = text.substr(colon + 2);
        text.resize(colon);
    }
    for (std::string* sentence : {&text, &advice})
        if (!sentence->empty() && sentence->back() == '.')
            sentence->pop_back();
    // A sentence of ours begins small, but for what has a capital letter of its own.
    for (char const* word :
         {"Variable ", "Influence ", "Parameter ", "Atom ", "Component ", "The "})
        if (text.rfind(word, 0) == 0)
            text.front() =
                static_cast<char>(std::tolower(static_cast<unsigned char>(text.front())));
    TextRange const place = places.of(finding.text);
    finding.refuses ? messages.error(place, text, advice) : messages.warning(place, text, advice);
}

}  // namespace

void tellFindings(FlatPlant const& flat, Messages& messages) {
    Host silent;
    Plant plant(flat.name);
    Scheduler scheduler(plant, silent);
    scheduler.startBuilding(plant);
    lower(flat, scheduler);
    Places const places(flat);
    for (Finding const& finding : checkPlant({plant.active_comps, plant.cls, plant.tavro_rt.get()}))
        tell(finding, places, messages);
}
