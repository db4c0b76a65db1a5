#pragma once

#include <QWidget>
#include <array>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "chart/profile_chart.h"
#include "datafile/creation.h"
#include "settings/settings.h"
#include "ui/screen/theme.h"
#include "viewer/opened_file.h"
#include "viewer/viewer_commands.h"

namespace kalmira {

class LineListView;
class OverviewView;
class ReadoutView;
class TouchButton;
class ViewCurveWnd;

// What the viewer needs of the program.
struct ViewerHost {
  DataPlace place;  // where the program's instrument keeps its files
  ExtractOptions extract;
  // Scales, colours and widths for files of that instrument.
  std::function<Settings(Kind kind, bool ice)> settingsFor;
  // The scales were changed while a file of that instrument was shown.
  std::function<void(Kind kind, bool ice, const Settings& changed)> takeSettings;
  std::function<void()> onLeft;  // the viewer is closed; the main menu is to be shown
};

// ViewFilesWnd: opens a data file, lists its survey lines and moves along one of them. All over its parent
// while it is shown. Data files are only ever read.
class ViewFilesWnd final : public QWidget {
 public:
  ViewFilesWnd(ViewerHost host, const Theme& theme, QWidget* parent);
  ~ViewFilesWnd() override;

  void open();
  // Shows the file in place of the one that is open. False when it cannot be opened: the operator has been
  // told why, and what was shown stays.
  bool openFile(const std::filesystem::path& path);
  // Closes file and window.
  void leave();
  // Whatever a button or key asks for.
  void run(ViewCommand command);

  const Navigation& navigation() const { return navigation_; }
  // The line above the plot: the file and its kind, then what came of the last command, if it says anything.
  std::string caption() const { return status_.empty() ? caption_ : caption_ + "   " + status_; }

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  bool focusNextPrevChild(bool) override { return false; }  // Tab moves the highlight

 private:
  void makeButtons();
  void act(ViewCommand command);
  void chooseFile();
  void chooseLine(int index);
  void enterScale();
  void savePicture();
  void exportCsv();
  void showHelp();
  std::string extractShown();
  void apply(const ViewStep& step);
  void moveBarTo(int bar);
  void moveToRow(int row);
  void showPlot();
  void showReadout();
  void showOverview();
  void showCaption();
  void showButtons();
  void layOut();
  ProfileSetup setupFor(QSize size) const;
  std::filesystem::path savedName(const char* extension) const;
  void tell(const std::string& text);

  ViewerHost host_;
  const Theme* theme_;
  RowFiles row_files_;
  Settings settings_;
  std::unique_ptr<OpenedFile> file_;
  Navigation navigation_;
  std::string caption_;
  std::string status_;
  QString outer_title_;  // of the program's window, as it was before
  int highlight_ = 0;
  bool acting_ = false;
  bool telling_ = false;
  LineListView* lines_;
  ReadoutView* readout_;
  ViewCurveWnd* plot_;
  OverviewView* overview_;
  std::array<TouchButton*, kViewButtons> buttons_{};
  QRect caption_place_;
};

}  // namespace kalmira
