#pragma once

#include <QList>

#include <algorithm>
#include <functional>
#include <random>

/// The chance of one step. The same seed gives the same step, whatever was rolled before it.
class RandomDice
{
public:
    explicit RandomDice(quint32 seed = 0)
        : m_Engine(seed)
    {
    }

    quint32 roll() { return quint32(m_Engine()); }
    /// 0 to bound - 1; 0 for a bound of 0.
    int below(int bound) { return bound > 0 ? int(roll() % quint32(bound)) : 0; }
    bool maybe(double probability = 0.5) { return roll() < probability * 4294967296.0; }
    double between(double low, double high)
    {
        return low + (high - low) * double(roll()) / 4294967295.0;
    }
    template <typename T> T of(const QList<T>& all) { return all.value(below(all.size())); }
    void oneOf(std::initializer_list<std::function<void()>> acts)
    {
        acts.begin()[below(int(acts.size()))]();
    }

    /// One of several objects, null for none. Which one depends on their keys, not on how many there are
    /// or in which order: without a step that made another one the choice stays the same.
    template <typename T, typename Key> T* pick(const QList<T*>& from, Key&& key)
    {
        const quint32 salt = roll();
        const auto rank = [&](T* one) { return scramble(key(*one) ^ salt); };
        const auto best = std::min_element(from.cbegin(), from.cend(),
            [&rank](T* one, T* other) { return rank(one) < rank(other); });
        return best == from.cend() ? nullptr : *best;
    }

    static quint32 scramble(quint32 bits)
    {
        bits = (bits ^ (bits >> 16)) * 0x85ebca6bU;
        bits = (bits ^ (bits >> 13)) * 0xc2b2ae35U;
        return bits ^ (bits >> 16);
    }

private:
    std::mt19937 m_Engine;
};
