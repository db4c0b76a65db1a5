#include "ui/setup/setup_dialogs.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QSignalBlocker>
#include <string>

#include "instruments/catalogue.h"
#include "platform/text.h"
#include "settings/survey_setup.h"
#include "ui/screen/template_dialog.h"
#include "ui/screen/theme.h"

namespace kalmira {
namespace {

constexpr const char* kDefaultLineName = "1";

const char* fieldOf(SurveyNumber number) {
  switch (number) {
    case SurveyNumber::readingsInterval: return "readingsInterval";
    case SurveyNumber::stationIncrement: return "stationIncrement";
    case SurveyNumber::readingsCount: return "readingsCount";
    case SurveyNumber::lineIncrement: return "lineIncrement";
    case SurveyNumber::startStation: break;
  }
  return "startStation";
}

void fill(QComboBox& box, std::span<const std::string_view> entries, int position) {
  const QSignalBlocker quiet(&box);
  box.clear();
  for (const auto entry : entries) box.addItem(qtText(entry));
  box.setCurrentIndex(position);
}

// The dialog while it is open. Each mode has its own station increment and, in some kinds, its own lists; what is
// chosen for a mode stays while the operator looks at another.
class SurveySetupForm {
 public:
  SurveySetupForm(QDialog& dialog, const SetupFrame& frame, const Settings& settings);

  const Settings& changed() const { return settings_; }

 private:
  template <class Widget>
  Widget& piece(const char* name) const {
    return part<Widget>(dialog_, name);
  }
  QLineEdit& field(SurveyNumber number) const { return piece<QLineEdit>(fieldOf(number)); }
  // A kind whose readings are never averaged has no field for it.
  bool hasField(SurveyNumber number) const {
    return dialog_.findChild<QLineEdit*>(QLatin1String(fieldOf(number))) != nullptr;
  }

  void fillLine();
  void connectParts();
  void connectNumber(SurveyNumber number);
  void connectList(const char* box, ModeChoices& choices);

  void showMode();
  void showList(const char* box, const ModeChoices& choices);
  void showNumber(SurveyNumber number);
  void enableNumbers();
  void showRate();
  void note(const char* fieldName, const std::string& text);

  void changeMode(int mode);
  bool correct(SurveyNumber number);
  bool correctLineName();
  void takeValid(SurveyNumber number);
  void confirm();
  void takeRest();

  QDialog& dialog_;
  Kind kind_;
  Settings settings_;
  int mode_;
  ModeChoices list_a_;
  ModeChoices list_b_;
};

SurveySetupForm::SurveySetupForm(QDialog& dialog, const SetupFrame& frame, const Settings& settings)
    : dialog_(dialog),
      kind_(frame.kind),
      settings_(settings),
      mode_(surveyModeOf(settings)),
      list_a_(instrumentOf(kind_).listA, settings.surveyListA, mode_),
      list_b_(instrumentOf(kind_).listB, settings.surveyListB, mode_) {
  fill(piece<QComboBox>("surveyMode"), surveyModeNames(), mode_);
  piece<QLabel>("stationIncrementLabel").setText(settings.lengthUnits == 1 ? "Stn Increm., ft" : "Stn Increm., m");
  fillLine();
  for (const auto number : kSurveyNumbers) {
    if (hasField(number)) showNumber(number);
  }
  showMode();
  connectParts();
}

void SurveySetupForm::fillLine() {
  auto& name = piece<QLineEdit>("lineName");
  name.setMaxLength(static_cast<int>(kLineNameCharacters));
  name.setText(qtText(settings_.lineName));
  note("lineName", {});
  static constexpr std::array<std::string_view, 2> kSequences{"Alternate", "One Way"};
  static constexpr std::array<std::string_view, 4> kDirections{"West", "South", "North", "East"};
  fill(piece<QComboBox>("sequence"), kSequences, indexOr(settings_.sequenceMode, 2, Settings{}.sequenceMode));
  fill(piece<QComboBox>("direction"), kDirections, indexOr(settings_.direction, 4, Settings{}.direction));
}

void SurveySetupForm::connectParts() {
  QObject::connect(&piece<QComboBox>("surveyMode"), &QComboBox::currentIndexChanged, &dialog_,
                   [this](int mode) { changeMode(mode); });
  connectList("surveyListA", list_a_);
  connectList("surveyListB", list_b_);
  for (const auto number : kSurveyNumbers) {
    if (hasField(number)) connectNumber(number);
  }
  QObject::connect(&field(SurveyNumber::readingsInterval), &QLineEdit::textChanged, &dialog_, [this] { showRate(); });
  QObject::connect(&piece<QLineEdit>("lineName"), &QLineEdit::textEdited, &dialog_, [this] { note("lineName", {}); });
  auto& ok = piece<QPushButton>("ok");
  QObject::disconnect(&ok, &QPushButton::clicked, &dialog_, nullptr);
  QObject::connect(&ok, &QPushButton::clicked, &dialog_, [this] { confirm(); });
}

// A mark stands until the operator types over what it is about.
void SurveySetupForm::connectNumber(SurveyNumber number) {
  QObject::connect(&field(number), &QLineEdit::textEdited, &dialog_, [this, number] { note(fieldOf(number), {}); });
}

void SurveySetupForm::connectList(const char* box, ModeChoices& choices) {
  auto* list = dialog_.findChild<QComboBox*>(QLatin1String(box));
  if (list == nullptr) return;
  QObject::connect(list, &QComboBox::currentIndexChanged, &dialog_, [this, &choices](int position) {
    choices.choose(mode_, choices.list(mode_).firstValue + position);
  });
}

void SurveySetupForm::showMode() {
  showList("surveyListA", list_a_);
  showList("surveyListB", list_b_);
  showNumber(SurveyNumber::stationIncrement);
  enableNumbers();
  showRate();
}

// Templates serve several kinds, some of which lack a list.
void SurveySetupForm::showList(const char* box, const ModeChoices& choices) {
  auto* list = dialog_.findChild<QComboBox*>(QLatin1String(box));
  if (list == nullptr) return;
  const auto shown = choices.list(mode_);
  auto& label = piece<QLabel>((std::string(box) + "Label").c_str());
  list->setVisible(!shown.entries.empty());
  label.setVisible(!shown.entries.empty());
  label.setText(qtText(shown.label));
  fill(*list, shown.entries, choices.value(mode_) - shown.firstValue);
}

// As the settings hold it or, where they hold nothing usable, corrected and marked from the start.
void SurveySetupForm::showNumber(SurveyNumber number) {
  const auto limits = limitsOf(number, kind_);
  const auto shown = limitedNumber(surveyNumberText(settings_, number, mode_), limits,
                                   parseReal(surveyNumberText(Settings{}, number, mode_)));
  takeSurveyNumber(settings_, number, mode_, shown.value);
  field(number).setText(qtText(surveyNumberText(settings_, number, mode_)));
  note(fieldOf(number), shown.note);
}

void SurveySetupForm::enableNumbers() {
  for (const auto number : kSurveyNumbers) {
    if (!hasField(number)) continue;
    const bool used = isUsed(number, kind_, mode_);
    field(number).setEnabled(used);
    piece<QLabel>((std::string(fieldOf(number)) + "Label").c_str()).setEnabled(used);
  }
}

void SurveySetupForm::showRate() {
  auto& interval = field(SurveyNumber::readingsInterval);
  auto& rate = piece<QLabel>("readingsPerSecond");
  rate.setText(qtText(readingsPerSecondText(typedText(interval))));
  rate.setEnabled(interval.isEnabled());
}

void SurveySetupForm::note(const char* fieldName, const std::string& text) {
  auto& label = piece<QLabel>((std::string(fieldName) + "Note").c_str());
  label.setText(qtText(text));
  label.setVisible(!text.empty());
}

void SurveySetupForm::changeMode(int mode) {
  takeValid(SurveyNumber::stationIncrement);
  mode_ = mode;
  showMode();
}

// Whether the field could be taken as it stands. If not, it now holds what can be.
bool SurveySetupForm::correct(SurveyNumber number) {
  const auto typed = limitedNumber(typedText(field(number)), limitsOf(number, kind_),
                                   parseReal(surveyNumberText(settings_, number, mode_)));
  takeSurveyNumber(settings_, number, mode_, typed.value);
  if (typed.note.empty()) return true;
  field(number).setText(qtText(surveyNumberText(settings_, number, mode_)));
  note(fieldOf(number), typed.note);
  return false;
}

// A line without a name could not be found in the file.
bool SurveySetupForm::correctLineName() {
  auto& name = piece<QLineEdit>("lineName");
  if (!name.text().trimmed().isEmpty()) return true;
  name.setText(kDefaultLineName);
  note("lineName", "Was empty");
  return false;
}

// For a field out of the operator's sight or reach: what cannot be taken there leaves the old value.
void SurveySetupForm::takeValid(SurveyNumber number) {
  const auto typed = limitedNumber(typedText(field(number)), limitsOf(number, kind_), 0.0);
  if (typed.note.empty()) takeSurveyNumber(settings_, number, mode_, typed.value);
}

// What had to be corrected is shown before it is taken: the dialog then stays for a second OK.
void SurveySetupForm::confirm() {
  QLineEdit* first = nullptr;
  for (const auto number : kSurveyNumbers) {
    if (!hasField(number)) continue;
    if (!field(number).isEnabled()) {
      takeValid(number);
    } else if (!correct(number) && first == nullptr) {
      first = &field(number);
    }
  }
  if (!correctLineName() && first == nullptr) first = &piece<QLineEdit>("lineName");
  if (first == nullptr) {
    takeRest();
    return dialog_.accept();
  }
  first->setFocus(Qt::OtherFocusReason);
  first->selectAll();
  for (auto* area : dialog_.findChildren<QScrollArea*>()) area->ensureWidgetVisible(first);
}

void SurveySetupForm::takeRest() {
  settings_.surveyMode = mode_;
  settings_.surveyListA = list_a_.value(mode_);
  settings_.surveyListB = list_b_.value(mode_);
  settings_.stationIncrement = settings_.modeIncrement[static_cast<std::size_t>(mode_)];
  settings_.lineName = firstCharacters(typedText(piece<QLineEdit>("lineName")), kLineNameCharacters);
  settings_.sequenceMode = piece<QComboBox>("sequence").currentIndex();
  settings_.direction = piece<QComboBox>("direction").currentIndex();
}

}  // namespace

std::optional<Settings> runSurveySetupDialog(QWidget* parent, const SetupFrame& frame, const Settings& settings,
                                             const std::function<void(QWidget* parent)>& editNotes) {
  const auto dialog = makeDialog(surveySetupTemplate(frame.kind, frame.portrait, frame.storageClass), parent);
  if (dialog == nullptr) return std::nullopt;
  const SurveySetupForm setup(*dialog, frame, settings);
  auto& notes = part<QPushButton>(*dialog, "notes");
  notes.setVisible(static_cast<bool>(editNotes));
  QObject::connect(&notes, &QPushButton::clicked, dialog.get(), [&] { editNotes(parent); });
  if (!runDialog(*dialog)) return std::nullopt;
  return setup.changed();
}

}  // namespace kalmira
