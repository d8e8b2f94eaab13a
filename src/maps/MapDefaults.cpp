#include "maps/MapDefaults.h"

#include "platform/SettingsStore.h"

namespace halvane {

namespace {
const QString Section = QStringLiteral("Defaults");

// The keys in the order they are read and written.
struct DefaultKey {
    const char* key;
    QString MapRules::*field;
};
const DefaultKey Keys[] = {
    {"CaptureLimit", &MapRules::captureLimit}, {"FragLimit", &MapRules::fragLimit},
    {"TimeLimit", &MapRules::timeLimit},       {"KnockBack", &MapRules::knockBack},
    {"Gravity", &MapRules::gravity},           {"Speed", &MapRules::speed},
};
} // namespace

MapRules readDefaultRules(const SettingsStore& store) {
    const MapRules builtIn = MapRules::builtIn();
    MapRules rules;
    for (const DefaultKey& key : Keys)
        rules.*key.field = store.read(Section, QLatin1String(key.key), builtIn.*key.field);
    return rules;
}

bool writeDefaultRules(SettingsStore& store, const MapRules& rules) {
    for (const DefaultKey& key : Keys) {
        if (!store.write(Section, QLatin1String(key.key), rules.*key.field))
            return false;
    }
    return store.flush();
}

} // namespace halvane
