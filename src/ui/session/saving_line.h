#pragma once

#include <QFont>
#include <QWidget>

#include "logging/saving.h"
#include "ui/screen/theme.h"

namespace kalmira {

// One line of proof that the survey is being saved. It takes the colour of a warning or an alarm with the worst of what
// it says; on a small screen that is all it says.
class SavingLine final : public QWidget {
 public:
  SavingLine(const Theme& theme, QWidget* parent);

  void setTheme(const Theme& theme);
  void setSigns(SavingSigns signs);
  const SavingSigns& signs() const { return signs_; }
  void setSmall(bool small);
  std::string text() const { return small_ ? signs_.shortText() : signs_.text(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  const Theme* theme_;
  SavingSigns signs_;
  bool small_ = false;
  // What the letters' size was found for, which takes longer than painting them.
  struct FittedTo {
    qsizetype letters = 0;
    QSize size{};
    QFont font{};

    bool operator==(const FittedTo&) const = default;
  };
  FittedTo fitted_to_;
  QFont letters_;
};

}  // namespace kalmira
