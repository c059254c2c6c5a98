// The hash table of the discrete side, and the two comparison objects that go with it.
//
// Iteration order over these tables decides ties between candidates, so it is part of the
// behaviour: the container is the library extension __gnu_cxx::hash_map, with its string hash and
// its growth over the prime table, and nothing else may be used in its place. This header alone
// names it; the test of this folder pins the order.
#pragma once

#include <algorithm>
#include <cstring>
#include <vector>
#define _GLIBCXX_PERMIT_BACKWARD_HASH
#include <ext/hash_map>
#undef _GLIBCXX_PERMIT_BACKWARD_HASH

// A copy walks in the order of its source: it has as many buckets, and what shares one is inserted
// from the last to the first, since a new entry stands before the others of its bucket. The
// library's own copy is not used, because it loses the entries copied so far when memory gives out
// on the way.
template <typename Key, typename Value, typename Equal = std::equal_to<Key>>
class hash_map : public __gnu_cxx::hash_map<Key, Value, __gnu_cxx::hash<Key>, Equal> {
    using Table = __gnu_cxx::hash_map<Key, Value, __gnu_cxx::hash<Key>, Equal>;

public:
    hash_map() = default;
    hash_map(hash_map const& source) : Table(source.bucket_count()) {
        std::vector<typename Table::value_type const*> entries;
        entries.reserve(source.size());
        for (auto const& entry : source)
            entries.push_back(&entry);
        std::for_each(entries.rbegin(), entries.rend(),
                      [this](auto const* entry) { this->insert(*entry); });
    }
    hash_map& operator=(hash_map source) {
        this->swap(source);
        return *this;
    }
};

// Equality of zero-terminated strings. Keys are borrowed: they must outlive their entry.
struct eqstr {
    bool operator()(char const* a, char const* b) const { return std::strcmp(a, b) == 0; }
};

// A table by text, for keys such as Atom::getId() and Comp::getName().
template <typename Value>
using string_map = hash_map<char const*, Value, eqstr>;

// Ordering object of the bags of signed atoms.
// Required: it answers equality where a strict order is expected. Such a multimap is never searched
// by key; the order in which it is walked follows from this comparison and from the order of
// insertion, and printing and conflict handling show that order.
struct eqbool {
    bool operator()(bool a, bool b) const { return a == b; }
};
