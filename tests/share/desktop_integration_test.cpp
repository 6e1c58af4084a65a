// What tells the desktop about the editor: its entry, its icon, and the type of its files.
#include <gtest/gtest.h>

#include <QFile>
#include <QMimeDatabase>
#include <QProcess>
#include <QSettings>
#include <QStandardPaths>
#include <QXmlStreamReader>
#include <QtEndian>
#include <array>

#include "core/sig_file.h"
#include "tests/core/table_of.h"
#include "tests/core/temp_folder.h"

namespace chanplan::testing {
namespace {

const QString Share = CHANPLAN_SHARE_DIR;

QString Entry(const char* key) {
  return QSettings(Share + "/chanplan-editor.desktop", QSettings::IniFormat)
      .value(QString("Desktop Entry/") + key)
      .toString();
}

TEST(DesktopIntegration, XmlIsWellFormed) {
  for (const char* name : {"chanplan-mime.xml", "chanplan-editor.metainfo.xml", "icons/chanplan-editor.svg"}) {
    QFile file(Share + "/" + name);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    QXmlStreamReader reader(&file);
    while (!reader.atEnd()) reader.readNext();
    EXPECT_FALSE(reader.hasError()) << name << ": " << reader.errorString().toStdString();
  }
}

TEST(DesktopIntegration, PicturesOfTheIconHaveTheSizesOfTheirNames) {
  for (const int size : {48, 128}) {
    QFile file(Share + QString("/icons/chanplan-editor-%1.png").arg(size));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << size;
    const QByteArray head = file.read(24);  // it ends with width and height
    ASSERT_EQ(head.size(), 24);
    EXPECT_EQ(head.left(8), "\x89PNG\r\n\x1A\n");
    EXPECT_EQ(qFromBigEndian<quint32>(head.data() + 16), quint32(size));
    EXPECT_EQ(qFromBigEndian<quint32>(head.data() + 20), quint32(size));
  }
}

TEST(DesktopIntegration, EntryNamesTheProgramItsIconAndItsFiles) {
  EXPECT_EQ(Entry("Exec"), "chanplan-editor %F");
  EXPECT_TRUE(QFile::exists(Share + "/icons/" + Entry("Icon") + ".svg"));
  QFile types(Share + "/chanplan-mime.xml");
  ASSERT_TRUE(types.open(QIODevice::ReadOnly));
  EXPECT_TRUE(types.readAll().contains(R"(type="application/x-chanplan-table")"));
}

// A folder of types: the ones that systems usually know, and ours. Files of the same name beside them.
class TypesAndFiles : public ::testing::Test {
 protected:
  struct Case {
    const char* Name;
    std::string Bytes;
    std::string Type;
  };

  void SetUp() override {
    const std::filesystem::path usualTypes = "/usr/share/mime/packages/freedesktop.org.xml";
    if (!std::filesystem::exists(usualTypes)) GTEST_SKIP() << "this system knows no types";
    const std::filesystem::path installed = folder / "mime/packages";
    std::filesystem::create_directories(installed);
    std::filesystem::copy((Share + "/chanplan-mime.xml").toStdString(), installed);
    std::filesystem::copy(usualTypes, installed);
    qputenv("XDG_DATA_HOME", (folder / "none").string().c_str());
    qputenv("XDG_DATA_DIRS", folder.Path().string().c_str());
    for (const Case& file : cases) WriteFile(folder / file.Name, file.Bytes);
  }
  QString PathOf(const Case& file) const { return QString::fromStdString((folder / file.Name).string()); }

  const TempFolder folder;
  const std::array<Case, 4> cases = {{
      {"plan.sig", WriteSigTable(TableOf({NamedRow("DCS")})), "application/x-chanplan-table"},
      {"plan", WriteSigTable(TableOf({})), "application/x-chanplan-table"},
      {"mail.sig", "-----BEGIN PGP SIGNATURE-----\n\nabc\n", "application/pgp-signature"},
      {"binary.sig", "\x88\x5D\x04\x01\x16\x0A\x01\x1D\x16\x21", "application/pgp-signature"},
  }};
};

TEST_F(TypesAndFiles, TablesAreToldFromSignaturesByTheLibrary) {
  for (const Case& file : cases)
    EXPECT_EQ(QMimeDatabase().mimeTypeForFile(PathOf(file)).name().toStdString(), file.Type) << file.Name;
}

// What file managers of the other toolkit see.
TEST_F(TypesAndFiles, TablesAreToldFromSignaturesByOtherPrograms) {
  for (const char* program : {"update-mime-database", "gio"})
    if (QStandardPaths::findExecutable(program).isEmpty()) GTEST_SKIP() << program << " is not installed";
  ASSERT_EQ(QProcess::execute("update-mime-database", {QString::fromStdString((folder / "mime").string())}), 0);
  for (const Case& file : cases) {
    QProcess gio;
    gio.start("gio", {"info", "--attributes=standard::content-type", PathOf(file)});
    ASSERT_TRUE(gio.waitForFinished());
    const std::string told = gio.readAllStandardOutput().toStdString();
    EXPECT_NE(told.find("standard::content-type: " + file.Type + "\n"), std::string::npos) << file.Name << ": " << told;
  }
}

}  // namespace
}  // namespace chanplan::testing
