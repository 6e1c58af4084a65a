// The document window: looking for names, frequencies and channels.
#include <algorithm>

#include "editor/find_bar.h"
#include "editor/frm_document.h"
#include "editor/text_edge.h"

namespace chanplan {
namespace {

std::vector<frmDocument*> OpenDocuments(const QMdiArea* area) {
  std::vector<frmDocument*> documents;
  if (area == nullptr) return documents;
  for (QMdiSubWindow* window : area->subWindowList())
    if (auto* document = qobject_cast<frmDocument*>(window); document != nullptr && !document->State().Released)
      documents.push_back(document);
  return documents;
}

}  // namespace

void frmDocument::Find() {
  CommitEdit();
  OpenFindBar().Begin();
}

FindBar& frmDocument::OpenFindBar() {
  if (findBar == nullptr) {
    findBar = new FindBar(area);
    parentWidget()->installEventFilter(this);
    connect(findBar, &FindBar::Edited, this, [this] {
      found.reset();
      ShowFound();
    });
    connect(findBar, &FindBar::NextWanted, this, &frmDocument::FindNext);
    connect(findBar, &FindBar::Closed, this, [this] {
      CloseFindBar();
      ActiveGrid->setFocus();
    });
    connect(this, &DocumentWindow::TableChanged, findBar, [this] { ShowFound(); });
  }
  if (isMinimized()) showNormal();
  findBar->show();
  LayOut();
  KeepInSight(*findBar, findBar->rect());
  ShowFound();
  return *findBar;
}

bool frmDocument::FindBarIsShown() const { return findBar != nullptr && !findBar->isHidden(); }

// At the lower edge: of the part that is in sight where that is less than all, but not of a smaller one than
// the smallest document. What it stands on can be scrolled to.
void frmDocument::PlaceFindBar() {
  if (!FindBarIsShown() || isMinimized()) return;
  const QRect seen(area->mapFrom(parentWidget(), QPoint()), parentWidget()->size());
  const QSize least = area->size() - (size() - minimumSize());
  const int right = qBound(least.width(), seen.right() + 1, area->width());
  const int left = qBound(0, seen.left(), right - least.width());
  const int bottom = qBound(least.height(), seen.bottom() + 1, area->height());
  const int height = findBar->sizeHint().height();
  findBar->setGeometry(left, bottom - height, right - left, height);
  findBar->raise();
}

void frmDocument::CloseFindBar() {
  findBar->hide();
  LayOut();
}

// All that is to be found, in the order in which it is gone through.
std::vector<frmDocument::Found> frmDocument::FindAll() const {
  const PlanQuery query = ReadPlanQuery(BytesOf(findBar->txtFind->text()));
  std::vector<Found> all;
  for (frmDocument* document : OpenDocuments(mdiArea()))
    if (document == this || findBar->chkFindAll->isChecked())
      for (const PlanPlace& place : FindInPlan(document->table, query)) all.push_back({document, place});
  return all;
}

// From where the last one was found, or from this document's first row, and round again.
void frmDocument::FindNext(bool forwards) {
  const std::vector<Found> all = FindAll();
  if (all.empty()) return ShowFound();
  const std::vector<frmDocument*> documents = OpenDocuments(mdiArea());
  const auto position = [&](const Found& one) {
    return std::pair(std::ranges::find(documents, one.In), std::optional(one.Place));
  };
  const std::pair here(std::ranges::find(documents, this), found);
  auto next =
      forwards ? std::ranges::upper_bound(all, here, {}, position) : std::ranges::lower_bound(all, here, {}, position);
  if (forwards)
    next = next == all.end() ? all.begin() : next;
  else
    next = std::prev(next == all.begin() ? all.end() : next);
  if (next->In != this) HandOverFind(*next->In);
  next->In->ShowFoundPlace(next->Place);
}

// The bar goes with what is found: it stands in the document that has the keyboard.
void frmDocument::HandOverFind(frmDocument& other) {
  CloseFindBar();
  FindBar& bar = other.OpenFindBar();
  bar.txtFind->setText(findBar->txtFind->text());
  bar.chkFindAll->setChecked(true);
  mdiArea()->setActiveSubWindow(&other);
}

void frmDocument::ShowFoundPlace(const PlanPlace& place) {
  ShowField(place.Row, place.What);
  found = place;
  ShowFound();
  findBar->txtFind->setFocus();
}

void frmDocument::ShowFound() {
  if (!FindBarIsShown()) return;
  const QString text = findBar->txtFind->text();
  if (text.trimmed().isEmpty()) return findBar->ShowOutcome("");
  const std::vector<Found> all = FindAll();
  const auto current =
      std::ranges::find_if(all, [this](const Found& one) { return one.In == this && found == one.Place; });
  if (all.empty()) return findBar->ShowOutcome("Not found");
  if (current == all.end()) return findBar->ShowOutcome(QString("%1 found").arg(all.size()));
  findBar->ShowOutcome(QString("%1 of %2: ").arg(current - all.begin() + 1).arg(all.size()) +
                       TextOf(PlaceText(table, ReadPlanQuery(BytesOf(text)), *found)));
}

}  // namespace chanplan
