#pragma once

#include <QTimer>
#include <bitset>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "chart/profile_chart.h"
#include "datafile/creation.h"
#include "settings/settings.h"
#include "ui/screen/action_bar.h"
#include "ui/screen/cover_window.h"
#include "ui/viewer/export_dialog.h"
#include "viewer/navigation.h"
#include "viewer/opened_file.h"

class QLabel;

namespace kalmira {

class LineList;
class OverviewStrip;
class ReadoutView;
class ViewCurveWnd;
struct SaveQuestion;

// What the viewer needs of the program.
struct ViewerHost {
  DataPlace place;  // where the program's instrument keeps its files
  ExtractOptions extract;
  // Scales, colours and widths for files of that instrument.
  std::function<Settings(Kind kind, bool ice)> settingsFor;
  // The scales were changed while a file of that instrument was shown.
  std::function<void(Kind kind, bool ice, const Settings& changed)> takeSettings;
  // Kinds whose scale the operator has confirmed in the scale dialog, and not asked to be fitted since.
  std::bitset<kKindCount>& confirmedScales;
  std::function<void()> onLeft;  // the viewer is closed; what it covered is to be shown
  // What a session below the viewer has to say at once, in words; empty while all is well.
  std::function<std::string()> concern = {};
};

// ViewFilesWnd: opens a data file, lists its survey lines and moves along one of them. Data files are only ever read.
class ViewFilesWnd final : public CoverWindow {
 public:
  ViewFilesWnd(ViewerHost host, const Theme& theme, QWidget* parent);
  ~ViewFilesWnd() override;

  void open();
  // Shows the file in place of the one that is open. False when it cannot be opened: the operator has been told why,
  // and what was shown stays.
  bool openFile(const std::filesystem::path& path);
  // Shows the end of the file's last line, as of a file that is being logged. New readings come in as long as the end
  // of a line is in view, and the next line when it begins.
  void showEnd();
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
  void wheelEvent(QWheelEvent* event) override;

 private:
  void makeButtons();
  void act(ViewCommand command);
  void chooseFile();
  void chooseLine(int index);
  void enterScale();
  void fitScale();
  void takeScale();
  void showScale();
  void changeZoom(ViewCommand command);
  void finishRows();
  void follow();
  void showConcern();
  struct Written {
    std::string problem;  // empty: all went well
    std::string what;     // is in the file
    std::string remarks = {};
  };
  using WriteFile = std::function<Written(const std::filesystem::path&)>;
  void saveAs(const SaveQuestion& question, const WriteFile& write);
  void savePicture();
  void exportFile();
  void showHelp();
  std::string extractShown();
  void apply(const ViewStep& step);
  void moveBarTo(int column);
  void moveToRow(int row);
  int barColumn() const;
  void showPlot();
  void showReadout();
  void showOverview();
  void showCaption();
  void showButtons();
  void arrange();
  ProfileSetup setupFor(QSize size) const;
  void tell(const std::string& text);

  ViewerHost host_;
  const Theme* theme_;
  RowFiles row_files_;
  Settings settings_;  // the operator's
  Settings shown_;     // the same, with scales fitted to the line where they are
  std::unique_ptr<OpenedFile> file_;
  Navigation navigation_;
  Zoom zoom_;
  ExportChoice exported_;  // how it was done last
  PlotView view_;
  QTimer filling_;  // the row files, while nothing else is to be done
  QTimer following_;
  int wheel_ = 0;  // of a notch
  std::string caption_;
  std::string status_;
  QString outer_title_;  // of the program's window, as it was before
  bool acting_ = false;
  bool telling_ = false;
  LineList* lines_;
  ReadoutView* readout_;
  ViewCurveWnd* plot_;
  OverviewStrip* overview_;
  ActionBar buttons_;
  QRect caption_place_;
  QLabel* concern_;  // over all else
};

}  // namespace kalmira
