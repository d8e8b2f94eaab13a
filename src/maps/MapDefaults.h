#pragma once

#include "maps/MapCatalogue.h"

namespace halvane {

class SettingsStore;

// The default rules for new maps, kept in the settings section "Defaults".
MapRules readDefaultRules(const SettingsStore& store);
// Stores them key by key; false as soon as one write is refused.
bool writeDefaultRules(SettingsStore& store, const MapRules& rules);

} // namespace halvane
