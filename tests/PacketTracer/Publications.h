// Records what a publisher tells.
#pragma once

#include <optional>
#include <vector>

#include "Vanta/Publisher.h"

template <class Key, class Old>
struct Publications {
    struct Entry {
        Vanta::AttributeNumber attribute = 0;
        std::optional<Key> key;
        std::optional<Old> old;
    };

    explicit Publications(Vanta::Publisher const& publisher) {
        subscriber_.subscribe<&Publications::add>(publisher, this);
    }

    void add(Vanta::Publisher const&, Vanta::Subscriber&, Vanta::AttributeNumber attribute,
             Vanta::ValueRef key, Vanta::ValueRef old) {
        Entry& entry = seen.emplace_back();
        entry.attribute = attribute;
        if (!key.empty()) {
            entry.key = key.get<Key>();
        }
        if (!old.empty()) {
            entry.old = old.get<Old>();
        }
    }

    std::vector<Entry> seen;

  private:
    Vanta::Subscriber subscriber_;
};
