#include "bots/BotScripts.h"

#include "app/AppContext.h"
#include "bots/RandomSource.h"
#include "config/ConsoleText.h"
#include "platform/MessageBoxes.h"
#include "settings/TextForms.h"

#include <algorithm>
#include <cmath>

namespace halvane {

namespace {
const QString Warning = QStringLiteral("Warning");
} // namespace

BotScriptWriter::BotScriptWriter(const AppState& state, MessageBoxes& messages,
                                 RandomSource& random)
    : m_state(state), m_messages(messages), m_random(random) {}

QString BotScriptWriter::skillText(int level) {
    return QLatin1Char(' ') + signedText(level);
}

QString BotScriptWriter::TeamSuffix(int team) {
    return team == 1 ? QStringLiteral(" blue") : QStringLiteral(" red");
}

int BotScriptWriter::randomSkillLevel() {
    m_random.reseed();
    return int(std::floor(m_random.draw() * 5)) + 1;
}

void BotScriptWriter::startRotation() {
    FirstSetKicks.fill(false);
    m_setFolder.emplace(m_state.scriptFile(QStringLiteral("baseq3/srvbots")));
}

QString BotScriptWriter::setPath(qint16 n) const {
    const QString name = QStringLiteral("botset%1.cfg").arg(n);
    if (m_setFolder)
        return m_setFolder->path(name);
    return m_state.scriptFile(QStringLiteral("baseq3/srvbots/") + name);
}

void BotScriptWriter::MakeBotScript(const ServerSettings& settings) {
    if (settings.autoSelectBots)
        return;
    ScriptFile file(m_state.scriptFile(QStringLiteral("baseq3/srvbots.cfg")));
    bool ok = file.open() &&
              file.line(QStringLiteral("// Bot script created by ") + settings.versionCaption);
    if (ok && settings.randomBotSkill)
        ok = file.line(QStringLiteral("// Bot skill randomized"));
    ok = ok && file.line();
    for (const BotEntry& bot : settings.bots) {
        if (!ok)
            break;
        // A name from the bot list that the console would split (a blank, a
        // ';', a quote) would add a different bot or run a command: left out.
        if (!bot.selected || !isConsoleSafeMapName(bot.name))
            continue;
        const int level = settings.randomBotSkill ? randomSkillLevel() : bot.skill + 1;
        ok = file.line(QStringLiteral("addbot ") + bot.name + skillText(level) +
                       TeamSuffix(bot.team));
    }
    ok = ok && file.line() && file.line(QStringLiteral("// end of file")) && file.close();
    if (!ok) {
        m_messages.tell(Warning, QStringLiteral("An error occured while creating the bot script"),
                        MsgIcon::Information);
    }
}

// Picks one position below pool that the table does not hold yet. Each try
// re-seeds and draws; a generator that keeps landing on taken slots (a
// scripted one in a test, say) gets the next free slot after a while, so the
// pick always ends. -1 when every slot is taken.
int BotScriptWriter::pickInto(std::array<bool, Slots>& table, int pool) {
    if (std::none_of(table.begin(), table.begin() + pool, [](bool taken) { return !taken; }))
        return -1;
    int idx = 0;
    for (int tries = 0; tries < 20 * pool; ++tries) {
        m_random.reseed();
        idx = std::clamp(int(std::floor(m_random.draw() * pool - 1)) + 1, 0, pool - 1);
        if (!table[size_t(idx)]) {
            table[size_t(idx)] = true;
            return idx;
        }
    }
    while (table[size_t(idx)])
        idx = (idx + 1) % pool;
    table[size_t(idx)] = true;
    return idx;
}

// The size of a set is drawn between 2 and "Max. number of bots" (M). Where
// the plain rule cannot hold, the set is made to fit:
// - M below 2 gives a set of M bots (one for 1, none for 0 or less) rather
//   than more bots than the operator allowed;
// - only the first 100 positions of the list have slots, so picks come from
//   those, and a set never holds more bots than they offer (an empty list
//   gives sets that add nobody).
// With "Randomize Bot Skill" unchecked a bot of a random set plays at the skill
// the bot list keeps for its position.
void BotScriptWriter::MakeRandomBotScript(const ServerSettings& settings, const qint16& N,
                                          qint16 L) {
    const double m = leadingNumber(settings.randomBots);
    const double k = std::floor(m_random.draw() * (m - 1)) + 1;
    const int pool = int(std::min<size_t>(settings.bots.size(), Slots));
    const double wanted = m < 2 ? std::max(0.0, std::floor(m)) : k + 1;
    const int setSize = int(std::min<double>(wanted, pool));

    ScriptFile file(setPath(N));
    bool ok = file.open() && file.line(QStringLiteral("// Automated Bot script created by ") +
                                       settings.versionCaption);
    if (ok && settings.randomBotSkill)
        ok = file.line(QStringLiteral("// Bot skill randomized"));
    ok = ok && file.line();

    const auto name = [&](int position) { return settings.bots[size_t(position)].name; };
    const auto safe = [&](int position) { return isConsoleSafeMapName(name(position)); };
    if (N == 0) {
        for (int i = 0; i < setSize && ok; ++i) {
            const int picked = pickInto(FirstSetKicks, pool);
            if (picked >= 0 && safe(picked))
                ok = file.line(QStringLiteral("kick ") + name(picked));
        }
    } else {
        for (int i = 0; i < pool && ok; ++i) {
            if (PreviousSetPicks[size_t(i)] && safe(i))
                ok = file.line(QStringLiteral("kick ") + name(i));
        }
    }

    PreviousSetPicks.fill(false);
    for (int i = 0; i < setSize; ++i)
        pickInto(PreviousSetPicks, pool);

    const auto& adding = N == L ? FirstSetKicks : PreviousSetPicks;
    int t = 0;
    for (int i = 0; i < pool && ok; ++i) {
        if (!adding[size_t(i)] || !safe(i))
            continue;
        ++t;
        const int level =
            settings.randomBotSkill ? randomSkillLevel() : settings.bots[size_t(i)].skill + 1;
        ok = file.line(QStringLiteral("addbot ") + name(i) + skillText(level) +
                       (t % 2 == 1 ? QStringLiteral(" blue") : QStringLiteral(" red")));
    }
    ok = ok && file.line() && file.line(QStringLiteral("// end of file")) && file.close();
    if (!ok) {
        m_messages.tell(Warning,
                        QStringLiteral("An error occured while creating the bot script srvbots") +
                            QString::number(N) + QStringLiteral(".cfg"),
                        MsgIcon::Information);
    }
}

} // namespace halvane
