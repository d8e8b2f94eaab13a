#pragma once

#include <QtGlobal>
#include <array>
#include <optional>

namespace halvane {

// Team and skill per bot-list position. Only the first 100 positions have a
// slot; positions beyond are refused, never written past the end.
class BotTables {
public:
    static constexpr int Slots = 100;

    static bool hasSlot(int position) { return position >= 0 && position < Slots; }

    std::optional<qint16> team(int position) const {
        return hasSlot(position) ? std::optional<qint16>(m_team[position]) : std::nullopt;
    }
    std::optional<qint16> skill(int position) const {
        return hasSlot(position) ? std::optional<qint16>(m_skill[position]) : std::nullopt;
    }
    bool setTeam(int position, qint16 value) { return set(m_team, position, value); }
    bool setSkill(int position, qint16 value) { return set(m_skill, position, value); }

private:
    static bool set(std::array<qint16, Slots>& table, int position, qint16 value) {
        if (!hasSlot(position))
            return false;
        table[position] = value;
        return true;
    }
    std::array<qint16, Slots> m_team{};
    std::array<qint16, Slots> m_skill{};
};

} // namespace halvane
