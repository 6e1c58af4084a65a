// What tells the desktop about the editor: its entry, its icon, and the type of its files.
#include <gtest/gtest.h>

#include <QFile>
#include <QMimeDatabase>
#include <QSettings>
#include <QXmlStreamReader>

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
  for (const char* name : {"chanplan-mime.xml", "icons/chanplan-editor.svg"}) {
    QFile file(Share + "/" + name);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    QXmlStreamReader reader(&file);
    while (!reader.atEnd()) reader.readNext();
    EXPECT_FALSE(reader.hasError()) << name << ": " << reader.errorString().toStdString();
  }
}

TEST(DesktopIntegration, EntryNamesTheProgramItsIconAndItsFiles) {
  EXPECT_EQ(Entry("Exec"), "chanplan-editor %F");
  EXPECT_TRUE(QFile::exists(Share + "/icons/" + Entry("Icon") + ".svg"));
  QFile types(Share + "/chanplan-mime.xml");
  ASSERT_TRUE(types.open(QIODevice::ReadOnly));
  EXPECT_TRUE(types.readAll().contains(R"(type="application/x-chanplan-table")"));
}

TEST(DesktopIntegration, TablesAreToldFromSignaturesOfTheSameName) {
  const std::filesystem::path usualTypes = "/usr/share/mime/packages/freedesktop.org.xml";
  if (!std::filesystem::exists(usualTypes)) GTEST_SKIP() << "this system knows no types";
  const TempFolder folder;
  const std::filesystem::path installed = folder / "mime/packages";
  std::filesystem::create_directories(installed);
  std::filesystem::copy((Share + "/chanplan-mime.xml").toStdString(), installed);
  std::filesystem::copy(usualTypes, installed);
  qputenv("XDG_DATA_HOME", (folder / "none").string().c_str());
  qputenv("XDG_DATA_DIRS", folder.Path().string().c_str());
  const struct {
    const char* Name;
    std::string Bytes;
    std::string Type;
  } cases[] = {
      {"plan.sig", WriteSigTable(TableOf({NamedRow("DCS")})), "application/x-chanplan-table"},
      {"plan", WriteSigTable(TableOf({})), "application/x-chanplan-table"},
      {"mail.sig", "-----BEGIN PGP SIGNATURE-----\n\nabc\n", "application/pgp-signature"},
  };
  for (const auto& test : cases) {
    WriteFile(folder / test.Name, test.Bytes);
    const QString path = QString::fromStdString((folder / test.Name).string());
    EXPECT_EQ(QMimeDatabase().mimeTypeForFile(path).name().toStdString(), test.Type) << test.Name;
  }
}

}  // namespace
}  // namespace chanplan::testing
