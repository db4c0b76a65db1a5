#include <gtest/gtest.h>

#include <QFile>
#include <QMimeDatabase>
#include <QTemporaryDir>

#include "datafile/record_format.h"

namespace kalmira {
namespace {

const QString kSurveyType = QStringLiteral("application/x-kalmira-survey");

// What a desktop makes of data files that has this package's types and no others but Qt's own.
class MimeTypes : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(folder_.isValid());
    qputenv("XDG_DATA_HOME", folder_.path().toLocal8Bit());
    qputenv("XDG_DATA_DIRS", folder_.filePath("none").toLocal8Bit());
    ASSERT_TRUE(QDir(folder_.path()).mkpath("mime/packages"));
    ASSERT_TRUE(QFile::copy(KALMIRA_MIME_FILE, folder_.filePath("mime/packages/kalmira.xml")));
    ASSERT_TRUE(types_.mimeTypeForName(kSurveyType).isValid());
  }
  bool isSurvey(const std::string& bytes) const {
    return types_.mimeTypeForData(QByteArray::fromStdString(bytes)).name() == kSurveyType;
  }

  QTemporaryDir folder_;
  QMimeDatabase types_;
};

TEST_F(MimeTypes, EveryHeaderThatTheProgramsWriteIsKnownByItsBytes) {
  for (int index = 0; index < kKindCount; ++index) {
    const auto kind = static_cast<Kind>(index);
    const auto& row = instrumentOf(kind);
    for (const bool gps : {false, true}) {
      for (const bool option : {false, true}) {
        const Header1 header{.kind = kind, .shortInstrument = option, .gps = gps, .iceOption = option};
        EXPECT_TRUE(isSurvey(formatHeader1(header))) << row.name;
      }
    }
    for (const auto* name : {"111510A", "a name with blanks"}) {
      const auto file = QString::fromStdString(name + std::string(row.extension));
      EXPECT_EQ(types_.mimeTypeForFile(file, QMimeDatabase::MatchExtension).name(), kSurveyType);
      EXPECT_EQ(types_.mimeTypeForFile(file.toLower(), QMimeDatabase::MatchExtension).name(), kSurveyType);
    }
  }
}

// The desktop offers what the viewer takes, and nothing that it refuses.
TEST_F(MimeTypes, BytesAreASurveyWhereTheReaderSaysSo) {
  for (const auto* model : {"ORLA2   ", "ORLASx i", "TESKB   ", "TESKD   ", "TESKS   ", "VARDO   ", "MIRKA   ",
                            "GLACO   ", "TESK2   ", "TESK    ", "orla2   ", " ORLA2  "}) {
    for (const auto* program : {"W230", "W222", "W210", "W200", "    "}) {
      for (const auto* survey : {"GRD", "GPS", "GPX", "GR"}) {
        const auto header = std::string(model) + program + survey + "0000   3\n";
        EXPECT_EQ(isSurvey(header), findInstrumentByHeader(header) != nullptr) << header;
      }
    }
  }
  EXPECT_FALSE(isSurvey("ORLA2   W230"));
}

}  // namespace
}  // namespace kalmira
