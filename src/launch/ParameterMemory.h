#pragma once

class QCheckBox;
class QComboBox;
class QLineEdit;

namespace halvane {

struct AppContext;
class SettingsStore;

// The remembered extra command-line parameter lines (most recent first, ten
// offered) and the CD drive box.
class ParameterMemory {
public:
    static constexpr int Offered = 10;

    ParameterMemory(QComboBox& parameters, QCheckBox& specifyCd, QLineEdit& cdDrive,
                    AppContext& app);

    void loadParameterList();
    void saveParameterList();
    void loadCdDrive();
    // The same with another store, a profile's.
    void loadParameterList(const SettingsStore& store);
    void saveParameterList(SettingsStore& store);
    void loadCdDrive(const SettingsStore& store);
    // Writes the lines the list offers now as the remembered ones.
    bool storeOfferedLines(SettingsStore& store) const;

private:
    QComboBox& m_parameters;
    QCheckBox& m_specifyCd;
    QLineEdit& m_cdDrive;
    AppContext& m_app;
};

} // namespace halvane
