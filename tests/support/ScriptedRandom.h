#pragma once

#include "bots/RandomSource.h"

#include <QList>

namespace halvane::test {

// Hands out the draws a test chose, in order, repeating the last one when
// they run out; counts the re-seeds.
class ScriptedRandom : public RandomSource {
public:
    explicit ScriptedRandom(QList<double> draws = {0.0}) : m_draws(std::move(draws)) {}
    double draw() override {
        ++draws;
        if (m_next < m_draws.size())
            return m_draws[m_next++];
        return m_draws.isEmpty() ? 0.0 : m_draws.last();
    }
    void reseed() override { ++reseeds; }
    int draws = 0;
    int reseeds = 0;

private:
    QList<double> m_draws;
    qsizetype m_next = 0;
};

} // namespace halvane::test
