#pragma once

#include "config/ScriptFile.h"
#include "config/ServerSettings.h"

#include <array>
#include <optional>

namespace halvane {

struct AppState;
class MessageBoxes;
class RandomSource;

// Writes the bot scripts: the fixed srvbots.cfg of the bots the operator
// chose, and one random set per map of the rotation (srvbots/botsetN.cfg),
// each kicking the set before it so that the rotation closes into a cycle.
class BotScriptWriter {
public:
    static constexpr int Slots = 100;

    BotScriptWriter(const AppState& state, MessageBoxes& messages, RandomSource& random);

    void MakeBotScript(const ServerSettings& settings);
    // Writes set N of a rotation whose last set is L. Calls come in the order
    // 0 .. L after startRotation().
    void MakeRandomBotScript(const ServerSettings& settings, const qint16& N, qint16 L);

    // Start of a configuration write: clears FirstSetKicks and lists the set
    // folder once for all the sets to come.
    void startRotation();

    // " " + the level with its sign position: two blanks before the digit.
    static QString skillText(int level);
    static QString TeamSuffix(int team);

    // The bots picked for the set written last, and the bots set 0 kicks
    // (which the last set adds), by list position.
    std::array<bool, Slots> PreviousSetPicks{};
    std::array<bool, Slots> FirstSetKicks{};

private:
    int randomSkillLevel();
    int pickInto(std::array<bool, Slots>& table, int pool);
    QString setPath(qint16 n) const;

    const AppState& m_state;
    MessageBoxes& m_messages;
    RandomSource& m_random;
    std::optional<FolderNames> m_setFolder;
};

} // namespace halvane
