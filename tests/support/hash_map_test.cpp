// The order in which the hash tables are walked, which decides ties between candidates.
//
// Told in full: the hash of a text is h = 5 * h + c over its characters in 64-bit arithmetic, that
// of a number is the number; a table starts with 193 buckets; a new entry goes to the front of its
// bucket; a table that would hold more entries than it has buckets first grows to the next prime of
// the list, and moves its entries bucket by bucket, front first, each to the front of its new
// bucket. The walk goes through the buckets in order.
#include "support/hash_map.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <deque>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

std::uint64_t hashOf(std::string const& text) {
    std::uint64_t hash = 0;
    for (char const c : text)
        hash = 5 * hash + static_cast<std::uint64_t>(c);
    return hash;
}

// The rule above, on plain lists.
class TwinTable {
public:
    bool contains(std::string const& key) const {
        for (std::string const& other : buckets[hashOf(key) % buckets.size()])
            if (other == key)
                return true;
        return false;
    }
    void insert(std::string const& key) {
        if (contains(key))
            return;
        ++count;
        if (count > buckets.size())
            grow();
        buckets[hashOf(key) % buckets.size()].push_front(key);
    }
    std::vector<std::string> walk() const {
        std::vector<std::string> keys;
        for (auto const& bucket : buckets)
            keys.insert(keys.end(), bucket.begin(), bucket.end());
        return keys;
    }
    std::size_t width() const { return buckets.size(); }

private:
    using Bucket = std::deque<std::string>;

    void grow() {
        std::vector<Bucket> wider(nextPrime());
        for (Bucket const& bucket : buckets)
            for (std::string const& key : bucket)
                wider[hashOf(key) % wider.size()].push_front(key);
        buckets = wider;
    }
    std::size_t nextPrime() const {
        for (std::size_t const prime : {193, 389, 769, 1543, 3079, 6151})
            if (prime > buckets.size())
                return prime;
        ADD_FAILURE() << "the list of this test is too short";
        return 0;
    }

    std::vector<Bucket> buckets = std::vector<Bucket>(193);
    std::size_t count = 0;
};

// A table whose keys live on beside it.
class Table {
public:
    void insert(std::string const& text) {
        keys.push_back(text);
        entries[keys.back().c_str()] = static_cast<int>(keys.size());
    }
    std::vector<std::string> walk() const {
        std::vector<std::string> order;
        for (auto const& entry : entries)
            order.push_back(entry.first);
        return order;
    }

    std::deque<std::string> keys;
    string_map<int> entries;
};

using Keys = std::vector<std::string>;

// "" 0, "aa" 5*97+97 = 582 = 3 + 3*193, "ab" 583 -> 4, "a" 97, "b" 98, "abc" 5*583+99 = 3014 ->
// 119.
TEST(StringMap, WalksBucketsByTheHashOfTheKey) {
    Table table;
    for (char const* key : {"abc", "b", "ab", "a", "", "aa"})
        table.insert(key);
    EXPECT_EQ(table.walk(), (Keys{"", "aa", "ab", "a", "b", "abc"}));
    Table other;
    for (char const* key : {"", "a", "aa", "ab", "abc", "b"})
        other.insert(key);
    EXPECT_EQ(other.walk(), table.walk()) << "without collisions the order of entry plays no part";
}

// "ba" 5*98+97 and "af" 5*97+102 are both 587 -> 8.
TEST(StringMap, WalksOneBucketFromTheLastEnteredToTheFirst) {
    Table first;
    for (char const* key : {"ba", "af", "a"})
        first.insert(key);
    EXPECT_EQ(first.walk(), (Keys{"af", "ba", "a"}));
    Table second;
    for (char const* key : {"a", "af", "ba"})
        second.insert(key);
    EXPECT_EQ(second.walk(), (Keys{"ba", "af", "a"}));
}

TEST(StringMap, WalksTheNamesOfAModelLikeTheTwin) {
    Table table;
    TwinTable twin;
    for (char const* component : {"thermostat", "room", "heater"})
        for (char const* value :
             {"on", "off", "stuck_on", "stuck_off", "open", "closed", "unknown"}) {
            std::string const id = std::string(component) + ".mode=" + value;
            table.insert(id);
            twin.insert(id);
        }
    EXPECT_EQ(table.walk(), twin.walk());
}

// Long texts wrap the 64 bits of the hash; letters make it likely that buckets are shared.
TEST(StringMap, GrowsOverThePrimesLikeTheTwin) {
    unsigned const seed = 20;
    std::mt19937 random(seed);
    Table table;
    TwinTable twin;
    EXPECT_EQ(table.entries.bucket_count(), 193u);
    while (table.entries.size() < 1600) {
        std::string key(1 + random() % 40, ' ');
        for (char& c : key)
            c = static_cast<char>('a' + random() % 26);
        table.insert(key);
        twin.insert(key);
        ASSERT_EQ(table.entries.bucket_count(), twin.width()) << table.entries.size();
        bool const compared = table.entries.size() % 97 <= 2 || table.entries.size() > 1540;
        if (compared) {
            ASSERT_EQ(table.walk(), twin.walk()) << "seed " << seed << " " << table.entries.size();
        }
    }
    EXPECT_EQ(table.entries.bucket_count(), 3079u);
}

// The table grows before the entry that would outnumber the buckets.
TEST(StringMap, GrowsJustBeyondEachPrime) {
    Table table;
    for (std::size_t const prime : {193u, 389u, 769u, 1543u}) {
        while (table.entries.size() < prime)
            table.insert(std::to_string(table.entries.size()));
        EXPECT_EQ(table.entries.bucket_count(), prime);
        table.insert("beyond " + std::to_string(prime));
        EXPECT_GT(table.entries.bucket_count(), prime);
    }
}

TEST(StringMap, KeysAreComparedByText) {
    Table table;
    table.insert("key");
    table.insert("key");
    EXPECT_EQ(table.entries.size(), 1u);
    EXPECT_EQ(table.entries["key"], 2) << "the later value";
    EXPECT_EQ(table.entries.begin()->first, table.keys[0].c_str()) << "the earlier key";
    std::string const text = "key";
    EXPECT_EQ(table.entries.count(text.c_str()), 1u);
    EXPECT_EQ(table.entries.count("kez"), 0u);
}

TEST(StringMap, SubscriptEntersAnEmptyValueForAnAbsentKey) {
    string_map<int*> table;
    EXPECT_EQ(table.count("a"), 0u);
    EXPECT_EQ(table["a"], nullptr);
    EXPECT_EQ(table.size(), 1u);
}

TEST(StringMap, EraseKeepsTheOrderOfTheOthers) {
    Table table;
    for (char const* key : {"ba", "af", "a", "b"})
        table.insert(key);
    table.entries.erase("af");
    EXPECT_EQ(table.walk(), (Keys{"ba", "a", "b"}));
}

// 389 entries in 389 buckets share many; "ba" and "af" share one of 193. A copy that entered them
// in the order of the walk would turn each bucket round.
TEST(StringMap, ACopyWalksLikeItsSource) {
    Table table;
    for (char const* key : {"ba", "af", "a"})
        table.insert(key);
    string_map<int> const few = table.entries;
    EXPECT_STREQ(few.begin()->first, "af");
    while (table.entries.size() < 389)
        table.insert(std::to_string(7 * table.entries.size()));
    string_map<int> const many = table.entries;
    EXPECT_EQ(many.bucket_count(), 389u);
    EXPECT_TRUE(std::equal(many.begin(), many.end(), table.entries.begin(), table.entries.end()));
    table.entries = few;
    EXPECT_EQ(table.entries.bucket_count(), 193u) << "an assignment takes the width over too";
    EXPECT_TRUE(std::equal(few.begin(), few.end(), table.entries.begin(), table.entries.end()));
}

TEST(Eqstr, ComparesTexts) {
    eqstr const equal;
    std::string const one = "one";
    EXPECT_TRUE(equal(one.c_str(), "one"));
    EXPECT_FALSE(equal("one", "on"));
    EXPECT_FALSE(equal("", "o"));
    EXPECT_TRUE(equal("", ""));
}

// The bucket of a number is its rest: 194 and 1 share one, 386 is in bucket 0.
TEST(HashMap, WalksNumbersByTheirRest) {
    hash_map<int, int> table;
    for (int const key : {5, 386, 1, 194, 3})
        table[key] = key;
    std::vector<int> order;
    for (auto const& entry : table)
        order.push_back(entry.first);
    EXPECT_EQ(order, (std::vector<int>{386, 194, 1, 3, 5}));
}

TEST(Eqbool, AnswersEquality) {
    eqbool const equal;
    EXPECT_TRUE(equal(true, true));
    EXPECT_TRUE(equal(false, false));
    EXPECT_FALSE(equal(true, false));
    EXPECT_FALSE(equal(false, true));
}

}  // namespace
