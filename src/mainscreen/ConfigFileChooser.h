#pragma once
#include <QWidget>
#include <functional>
#include <string>

// The file dialog of the File menu. Tests install a chooser that answers
// without a person.
namespace sb::ui {

enum class ConfigFileChoice { Open, Save, Compare };

// The path the user chose, empty when they cancelled.
std::string ChooseConfigFile(QWidget* parent, ConfigFileChoice choice);

using ConfigFileChooser = std::function<std::string(ConfigFileChoice choice)>;
// An empty chooser brings the real file dialog back.
void SetConfigFileChooser(ConfigFileChooser chooser);

}  // namespace sb::ui
