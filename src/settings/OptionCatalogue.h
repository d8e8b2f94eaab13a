#pragma once

#include <QString>
#include <span>

namespace halvane {

// How a value is kept as text in the store.
enum class TextForm {
    Plain,       // text, unchanged
    WholeNumber, // a check box's 0 or 1, or another 16-bit number
    Truth,       // "True"/"False"
    Position,    // the position of a selector's chosen entry
};

// One persisted option. The table lists them in the order they are saved;
// `step` is the settings-load step that reads the key (0: read elsewhere),
// and `sub` orders the keys within a step where that order differs.
struct OptionKey {
    const char* section;
    const char* key;
    const char* defaultText;
    const char* holder; // object name of the control that holds the live value
    TextForm form;
    int step;
    int sub = 0;
};

// Keys whose value is not a plain holder value get these holder names.
inline constexpr const char* HolderStatusPanel = "@StatusPanel";
inline constexpr const char* HolderLastTab = "@LastTab";
inline constexpr const char* HolderBots = "@Bots"; // the per-position bot keys go here

std::span<const OptionKey> optionCatalogue();

// The option of a section and key, or nullptr.
const OptionKey* findOption(const QString& section, const QString& key);

// The text the store returns for an absent key.
QString defaultOf(const QString& section, const QString& key);

// Messages the settings load reports a failing step with, by step number 1-38.
QString loadStepMessage(int step);
inline constexpr int LoadStepCount = 38;

} // namespace halvane
