#include "settings/SettingsController.h"

#include "app/AppContext.h"
#include "settings/OptionCatalogue.h"
#include "settings/OptionPage.h"

namespace halvane {

SettingsController::SettingsController(std::vector<OptionPage*> parts, AppContext& app)
    : m_parts(std::move(parts)), m_app(app) {}

void SettingsController::report(const QString& stepMessage) {
    m_app.platform.messages.tell(
        QStringLiteral("Error"),
        stepMessage +
            QStringLiteral("\r\rYou may continue, but please notify Brask of this error."),
        MsgIcon::Information);
}

void SettingsController::LoadSettings() {
    LoadSettings(m_app.platform.store);
}

void SettingsController::LoadSettings(const SettingsStore& store) {
    for (int step = 1; step <= LoadStepCount; ++step) {
        const QString message = loadStepMessage(step);
        const OptionPage::Refused refused = [&](const QString& detail) {
            report(message + detail);
        };
        for (OptionPage* part : m_parts)
            part->load(store, step, refused);
    }
}

bool SettingsController::SaveSettings() {
    return SaveSettings(m_app.platform.store);
}

bool SettingsController::SaveSettings(SettingsStore& store) {
    for (const OptionKey& option : optionCatalogue()) {
        if (QLatin1String(option.holder).isEmpty()) // kept by their own owners
            continue;
        for (OptionPage* part : m_parts) {
            const std::optional<bool> written = part->save(store, option);
            if (!written)
                continue;
            if (!*written)
                return false;
            break;
        }
    }
    return store.flush();
}

} // namespace halvane
