#include <gmock/gmock.h>

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>

#include "platform/clock.h"
#include "settings/setup_lists.h"
#include "support/dialog_actor.h"
#include "ui/screen/template_dialog.h"
#include "ui/screen/touch_button.h"
#include "ui/setup/setup_dialogs.h"

namespace kalmira {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr QSize kUpright{480, 640};
constexpr QSize kLying{640, 480};

struct FrameCase {
  Kind kind;
  bool ice;
  const char* label;
};
const FrameCase kFrames[] = {{Kind::orla, false, "ORLA Port"},        {Kind::orla, true, "ORLA Port"},
                             {Kind::teskb, false, "TESKB Port"},      {Kind::teskdd, false, "TESK-DD Port"},
                             {Kind::tesk, false, "TESK Port"},        {Kind::vardo, false, "VARDO Port"},
                             {Kind::mirka, false, "Instrument Port"}, {Kind::glaco, false, "GLACO Port"},
                             {Kind::tesk2, false, "TESK-2 Port"}};

QComboBox& box(QDialog& dialog, const char* name) {
  return part<QComboBox>(dialog, name);
}

void tap(QDialog& dialog, const char* button) {
  QTest::mouseClick(&part<QPushButton>(dialog, button), Qt::LeftButton);
}

class SetupDialogs : public ::testing::Test {
 protected:
  SetupDialogs() { turn(kUpright); }
  void turn(QSize size) {
    window.resize(size);
    window.show();
  }
  SetupFrame frame(const FrameCase& of) const {
    return {.kind = of.kind, .iceOption = of.ice, .portrait = window.height() > window.width()};
  }
  std::optional<Settings> logger(const SetupFrame& frameOf, const std::function<void(QDialog&)>& act) {
    const DialogActor actor(window, "Logger Setup", act);
    return runLoggerSetupDialog(&window, frameOf, settings, ports);
  }
  GpsSetupOutcome gps(const std::function<void(QDialog&)>& act) {
    const DialogActor actor(window, "Set GPS Port", act);
    return runGpsPortSetupDialog(&window, settings, ports, access);
  }

  QWidget window;
  Settings settings;
  PortLists ports;
  ReceiverAccess access;
};

TEST_F(SetupDialogs, LoggerSetupOfEveryKindIsFilledSavedAndCancelled) {
  for (const QSize size : {kUpright, kLying}) {
    turn(size);
    for (const auto& each : kFrames) {
      SCOPED_TRACE(::testing::Message() << each.label << (each.ice ? " ice " : " ") << size.width());
      const auto lists = loggerSetupLists(frame(each));
      settings = {};
      for (const auto& list : lists) takePosition(list, static_cast<int>(list.entries.size()) - 1, settings);
      const auto homed = logger(frame(each), [&](QDialog& dialog) {
        EXPECT_EQ(part<QLabel>(dialog, "instrumentPortLabel").text(), each.label);
        std::size_t shown = 0;
        for (auto* found : dialog.findChildren<QComboBox*>()) shown += found->isVisible() ? 1U : 0U;
        EXPECT_EQ(shown, lists.size());
        for (const auto& list : lists) {
          EXPECT_EQ(box(dialog, list.name).count(), static_cast<int>(list.entries.size())) << list.name;
          EXPECT_EQ(box(dialog, list.name).currentText().toStdString(), list.entries.back());
          QTest::keyClick(&box(dialog, list.name), Qt::Key_Home);
        }
        QTest::keyClick(&dialog, Qt::Key_Return);
      });
      ASSERT_TRUE(homed);
      for (const auto& list : lists) {
        const bool greyed = list.needsIceDisplay;  // the first entry of the ice display greys them at once
        EXPECT_EQ((*homed).*list.field, greyed ? settings.*list.field : list.firstValue) << list.name;
      }
      EXPECT_FALSE(logger(frame(each), [&](QDialog& dialog) {
        QTest::keyClick(&box(dialog, "lengthUnits"), Qt::Key_Home);
        tap(dialog, "cancel");
      }));
    }
  }
}

TEST_F(SetupDialogs, IceListsAreGreyedWithoutTheIceDisplayAndSavedAsTheyStand) {
  settings.seaWaterChoice = 7;
  const auto changed = logger(frame(kFrames[1]), [](QDialog& dialog) {
    const auto usable = [&dialog] {
      return std::vector{box(dialog, "seaWater").isEnabled(), box(dialog, "iceQuantity").isEnabled()};
    };
    EXPECT_THAT(usable(), ElementsAre(false, false));
    QTest::keyClick(&box(dialog, "iceDisplay"), Qt::Key_Down);
    EXPECT_THAT(usable(), ElementsAre(true, true));
    QTest::keyClick(&box(dialog, "seaWater"), Qt::Key_Down);
    QTest::keyClick(&box(dialog, "iceQuantity"), Qt::Key_Down);
    QTest::keyClick(&box(dialog, "iceDisplay"), Qt::Key_Up);
    EXPECT_THAT(usable(), ElementsAre(false, false));
    tap(dialog, "ok");
  });
  ASSERT_TRUE(changed);
  EXPECT_EQ(changed->iceDisplay, 0);
  EXPECT_EQ(changed->seaWaterChoice, 8);
  EXPECT_EQ(changed->iceQuantity, 1);
}

TEST_F(SetupDialogs, TheDeviceLineFollowsTheListAndTheMachine) {
  std::string secondDevice = "/dev/ttyUSB1, adapter";
  int assignments = 0;
  ports.deviceLine = [&](int com) {
    if (com == 2) return DeviceText{.text = secondDevice};
    return DeviceText{.text = "device of " + std::to_string(com), .trouble = true};
  };
  ports.assignDevices = [&](QWidget*) {
    ++assignments;
    secondDevice = "/dev/ttyS4";
  };
  EXPECT_FALSE(logger(frame(kFrames[8]), [&](QDialog& dialog) {
    auto& line = part<QLabel>(dialog, "instrumentDevice");
    auto& marker = part<QLabel>(dialog, "markerDevice");
    EXPECT_EQ(line.text(), "device of 1");
    EXPECT_TRUE(line.font().bold());
    EXPECT_FALSE(marker.isVisible());
    QTest::keyClick(&box(dialog, "instrumentPort"), Qt::Key_Down);
    EXPECT_EQ(line.text(), "/dev/ttyUSB1, adapter");
    EXPECT_FALSE(line.font().bold());
    tap(dialog, "devices");
    EXPECT_EQ(line.text(), "/dev/ttyS4");
    secondDevice = "unplugged";
    EXPECT_TRUE(QTest::qWaitFor([&] { return line.text() == "unplugged"; }, 3000));
    for (int i = 0; i < 6; ++i) QTest::keyClick(&box(dialog, "markerPort"), Qt::Key_Down);
    EXPECT_EQ(marker.text(), "device of 7");  // there is no COM6 in that list
    dialog.reject();
  }));
  EXPECT_EQ(assignments, 1);
}

TEST_F(SetupDialogs, GpsSetupHasThreeWaysOut) {
  settings.gpsParityIndex = 99;  // of a file that somebody edited
  const auto change = [](QDialog& dialog) {
    std::vector<int> shown;
    for (const auto& list : gpsSetupLists()) {
      shown.push_back(box(dialog, list.name).currentIndex());
      QTest::keyClick(&box(dialog, list.name), Qt::Key_End);
    }
    EXPECT_THAT(shown, ElementsAre(0, 1, 0, 1, 0, 0));
    EXPECT_FALSE(part<QPushButton>(dialog, "find").isVisible()) << "nothing to find with";
  };
  using How = GpsSetupOutcome::How;
  const struct {
    const char* button;
    How how;
  } ways[] = {{"ok", How::saved}, {"cancel", How::cancelled}, {"monitor", How::monitor}};
  for (const auto& way : ways) {
    SCOPED_TRACE(way.button);
    const auto outcome = gps([&](QDialog& dialog) {
      change(dialog);
      tap(dialog, way.button);
    });
    EXPECT_EQ(outcome.how, way.how);
    const auto& now = outcome.settings;
    const std::vector<int> fields{now.gpsInput,         now.gpsPortIndex,   now.gpsBaudIndex,
                                  now.gpsDataBitsIndex, now.gpsParityIndex, now.gpsStopBitsIndex};
    if (way.how == How::cancelled) {
      EXPECT_THAT(fields, ElementsAre(0, 1, 0, 1, 99, 0));
    } else {
      EXPECT_THAT(fields, ElementsAre(1, 11, 7, 1, 2, 1));
    }
  }
}

// A receiver that is understood at one baud rate only; how many ports are open is counted.
class ReceiverPort final : public Port {
 public:
  ReceiverPort(std::atomic<int>& open, int baud) : open_(open), baud_(baud) {}
  std::optional<PortError> open(const std::string& device, const LineSettings& line) override {
    if (device != "receiver") return PortError{.kind = PortErrorKind::held, .text = device + " is held"};
    ++open_;
    heard_ = line.baud == baud_ ? "$GPGLL,1,2*53\r\n" : "";
    return std::nullopt;
  }
  ReadResult read(std::span<std::uint8_t> buffer, int) override {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    const auto count = std::min(buffer.size(), heard_.size());
    std::copy_n(heard_.begin(), count, buffer.begin());
    return {.count = count, .gone = heard_.empty()};  // no waiting where nothing will come
  }
  void purge() override {}
  unsigned modemStatus() override { return 0; }
  bool write(std::span<const std::uint8_t>, int) override { return true; }
  void close() override { --open_; }

 private:
  std::atomic<int>& open_;
  int baud_;
  std::string heard_;
};

class FindButton : public SetupDialogs {
 protected:
  FindButton() { listenTo("receiver", 38400); }
  void listenTo(std::string device, int baud) {
    access = {.deviceOf = [device = std::move(device)](int) { return device; },
              .portFactory = [this, baud] { return std::make_unique<ReceiverPort>(openPorts, baud); },
              .clock = &clock};
  }
  static QString found(QDialog& dialog) { return part<QLabel>(dialog, "findLine").text(); }

  SystemClock clock{TickBase::program};
  std::atomic<int> openPorts{0};
};

TEST_F(FindButton, ProposesWhatItHeardAndNothingElse) {
  settings.gpsParityIndex = 1;
  const auto outcome = gps([](QDialog& dialog) {
    QTest::mouseClick(&part<QPushButton>(dialog, "find"), Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([&] { return found(dialog).startsWith("Found"); }, 5000));
    EXPECT_EQ(found(dialog), "Found: 38400 baud ($GPGLL)");
    EXPECT_EQ(box(dialog, "gpsBaud").currentText(), "38400");
    EXPECT_EQ(box(dialog, "gpsParity").currentText(), "No");
    EXPECT_EQ(box(dialog, "gpsInput").currentText(), "Enabled");
    EXPECT_TRUE(dialog.isVisible()) << "the operator decides";
    tap(dialog, "cancel");
  });
  EXPECT_EQ(outcome.how, GpsSetupOutcome::How::cancelled);
  EXPECT_EQ(outcome.settings.gpsBaudIndex, 0);
  EXPECT_EQ(openPorts, 0);
}

TEST_F(FindButton, SaysWhatIsInTheWay) {
  const auto said = [this](const char* wanted) {
    gps([&](QDialog& dialog) {
      tap(dialog, "find");
      EXPECT_TRUE(QTest::qWaitFor([&] { return found(dialog).contains(wanted); }, 5000))
          << found(dialog).toStdString();
      EXPECT_EQ(part<QPushButton>(dialog, "find").text(), "&Find");
      dialog.reject();
    });
  };
  listenTo("receiver", 1);
  said("Nothing heard");
  listenTo("/dev/ttyUSB0", 4800);
  said("/dev/ttyUSB0 is held");
  listenTo("", 4800);
  said("There is no device behind COM2:");
  EXPECT_EQ(openPorts, 0);
}

TEST_F(FindButton, StopsWhenAskedAndWhenTheDialogIsLeft) {
  // A port that is silent for as long as it is listened to.
  class SilentPort final : public Port {
   public:
    explicit SilentPort(std::atomic<int>& open) : open_(open) {}
    std::optional<PortError> open(const std::string&, const LineSettings&) override {
      ++open_;
      return std::nullopt;
    }
    ReadResult read(std::span<std::uint8_t>, int timeoutMs) override {
      std::this_thread::sleep_for(std::chrono::milliseconds(timeoutMs));
      return {};
    }
    void purge() override {}
    unsigned modemStatus() override { return 0; }
    bool write(std::span<const std::uint8_t>, int) override { return true; }
    void close() override { --open_; }

   private:
    std::atomic<int>& open_;
  };
  access.portFactory = [this] { return std::make_unique<SilentPort>(openPorts); };
  const auto search = [this](QDialog& dialog) {
    tap(dialog, "find");
    EXPECT_TRUE(QTest::qWaitFor([this] { return openPorts == 1; }, 2000));
    EXPECT_EQ(found(dialog), "Listening at 4800 baud (1 of 8)");
  };
  const auto outcome = gps([&](QDialog& dialog) {
    search(dialog);
    tap(dialog, "find");
    EXPECT_EQ(openPorts, 0);
    EXPECT_FALSE(part<QLabel>(dialog, "findLine").isVisible());
    search(dialog);
    QTest::keyClick(&box(dialog, "gpsPort"), Qt::Key_Down);  // not that port
    EXPECT_EQ(openPorts, 0);
    search(dialog);
    tap(dialog, "ok");
  });
  EXPECT_EQ(outcome.how, GpsSetupOutcome::How::saved);
  EXPECT_EQ(openPorts, 0);
}

struct Template {
  std::string name;
  QSize window;
};
class SetupTemplates : public ::testing::TestWithParam<Template> {};

// At scale 2 on a screen of 96 dots an inch all is seen at once; smaller screens scroll.
TEST_P(SetupTemplates, FitTheWindowAndFitFingers) {
  QWidget window;
  window.resize(GetParam().window);
  window.show();
  const auto dialog = makeDialog(GetParam().name, &window);
  ASSERT_NE(dialog, nullptr);
  const DialogActor actor(window, dialog->windowTitle(), [](QDialog& open) {
    EXPECT_TRUE(open.parentWidget()->frameGeometry().contains(open.frameGeometry()));
    for (auto* control : open.findChildren<QWidget*>()) {
      if (qobject_cast<QComboBox*>(control) == nullptr && qobject_cast<QPushButton*>(control) == nullptr)
        continue;
      EXPECT_GE(control->height(), touchHeight(nullptr)) << control->objectName().toStdString();
      EXPECT_FALSE(control->visibleRegion().isEmpty()) << control->objectName().toStdString();
    }
    for (auto* label : open.findChildren<QLabel*>()) {
      EXPECT_GE(label->width(), label->sizeHint().width()) << label->text().toStdString();
    }
    open.accept();
  });
  EXPECT_TRUE(runDialog(*dialog));
}

std::vector<Template> templates() {
  std::vector<Template> all;
  for (const char* name : {"GetLoggerSetupOrla", "GetLoggerSetupOrlaIce", "GetLoggerSetupTesk",
                           "GetLoggerSetupTesk2", "GetGPSPortSetup", "Devices"}) {
    for (const QSize size : {kUpright, kLying}) all.push_back({name, size});
  }
  return all;
}

INSTANTIATE_TEST_SUITE_P(All, SetupTemplates, ::testing::ValuesIn(templates()), [](const auto& tested) {
  return tested.param.name + (tested.param.window == kLying ? "Lying" : "Upright");
});

}  // namespace
}  // namespace kalmira
