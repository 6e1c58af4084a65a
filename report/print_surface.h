// What the listing is drawn on: a printer, a file, or what a test records.
#pragma once

#include <stdexcept>
#include <string_view>

namespace chanplan {

/// What kept a surface from being drawn on, in words. What was drawn before is not withdrawn.
class PrintFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Positions and lengths are inches, from the top-left corner of the page's printable area. Texts
/// are UTF-8. What draws throws PrintFailure when the surface refuses it.
class PrintSurface {
 public:
  virtual ~PrintSurface() = default;

  virtual void SetFont(std::string_view name, double points) = 0;
  virtual double TextWidth(std::string_view text) const = 0;
  virtual double PrintableHeight() const = 0;
  /// A horizontal line, `penWidth` device dots wide, with its upper edge at the two points: letters that
  /// end there are not touched. The position stays.
  virtual void DrawLine(double x1, double y1, double x2, double y2, int penWidth) = 0;
  /// Ends the document and sends it where it belongs. Nothing is drawn after it.
  virtual void EndDocument() = 0;

  /// Where the next text's top-left corner will be; (0, 0) at first.
  void MoveTo(double x, double y);
  double CurrentY() const { return currentY; }
  /// Prints at the position and leaves it at the text's end.
  void Print(std::string_view text);
  /// Moves to the start of the next line of the current font.
  void EndLine();
  /// Starts a new page at (0, 0), with the same font.
  void NewPage();

 protected:
  virtual void DrawText(double x, double y, std::string_view text) = 0;
  virtual double LineHeight() const = 0;
  virtual void StartPage() = 0;

 private:
  double currentX = 0;
  double currentY = 0;
};

}  // namespace chanplan
