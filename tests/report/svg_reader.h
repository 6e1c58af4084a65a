// What an XML reader finds in a chart.
#pragma once

#include <QXmlStreamReader>
#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

namespace chanplan::testing {

struct SvgElement {
  std::string Tag;
  std::string Kind;  ///< its class
  double X = 0;
  double Y = 0;
  double Width = 0;
  double Height = 0;
  std::string Title;
  std::string Text;
};

struct SvgFile {
  double Height = 0;
  std::string Title;
  std::string Description;
  std::vector<std::string> Lanes;  ///< their titles
  std::vector<SvgElement> Elements;

  std::vector<SvgElement> Of(const std::string& tag, const std::string& kind) const {
    std::vector<SvgElement> found;
    std::ranges::copy_if(Elements, std::back_inserter(found),
                         [&](const SvgElement& element) { return element.Tag == tag && element.Kind == kind; });
    return found;
  }
};

/// Throws std::runtime_error unless `bytes` are well-formed XML, and when a position is no finite number.
inline SvgFile ReadSvg(const std::string& bytes) {
  SvgFile file;
  QXmlStreamReader reader(QByteArray::fromStdString(bytes));
  std::vector<std::string> open;
  const auto number = [&](const char* name) {
    const auto text = reader.attributes().value(QLatin1String(name));
    bool valid = true;
    const double value = text.isEmpty() ? 0 : text.toDouble(&valid);
    if (!valid || !(value >= 0 && value < 1e6))
      throw std::runtime_error(std::string("bad ") + name + " " + text.toString().toStdString());
    return value;
  };
  while (!reader.atEnd()) {
    const auto token = reader.readNext();
    const std::string tag = reader.name().toString().toStdString();
    if (token == QXmlStreamReader::StartElement) {
      if (tag == "svg") file.Height = number("height");
      const std::string kind = reader.attributes().value(QLatin1String("class")).toString().toStdString();
      if (tag == "rect" || tag == "text" || tag == "line")
        file.Elements.push_back({tag, kind, number("x"), number("y"), number("width"), number("height"), {}, {}});
      if (tag == "title" && open.back() == "g") file.Lanes.emplace_back();
      open.push_back(tag);
    } else if (token == QXmlStreamReader::EndElement) {
      open.pop_back();
    } else if (token == QXmlStreamReader::Characters && open.size() > 1) {
      const std::string text = reader.text().toString().toStdString();
      const std::string& parent = open[open.size() - 2];
      if (open.back() == "text") file.Elements.back().Text += text;
      if (open.back() == "desc") file.Description += text;
      if (open.back() == "title" && parent == "svg") file.Title += text;
      if (open.back() == "title" && parent == "rect") file.Elements.back().Title += text;
      if (open.back() == "title" && parent == "g") file.Lanes.back() += text;
    }
  }
  if (reader.hasError()) throw std::runtime_error(reader.errorString().toStdString());
  return file;
}

}  // namespace chanplan::testing
