#include "config/ConfigController.h"

#include "app/AppContext.h"

namespace halvane {

ConfigController::ConfigController(const ServerSettingsSource& form, MapCatalogue& catalogue,
                                   AppContext& app, RandomSource& random)
    : m_form(form), m_bots(app.state, app.platform.messages, random),
      m_writer(app.state, app.platform.messages, catalogue, m_bots) {}

ServerSettings ConfigController::snapshot() const {
    return m_form.serverSettings();
}

bool ConfigController::WriteConfig(const QString& path, bool withCommandLine,
                                   const QString& commandLine) {
    return m_writer.WriteConfig(snapshot(), path, withCommandLine, commandLine);
}

void ConfigController::MakeBotScript() {
    m_bots.MakeBotScript(snapshot());
}

} // namespace halvane
