#pragma once

#include <QStringList>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>

#include "desktop/setup/setup_services.h"
#include "desktop/window/window_texts.h"
#include "feeds/catalogue/catalogue_hit.h"
#include "feeds/catalogue/feed_adding.h"
#include "feeds/catalogue/feed_findings.h"

class QLabel;
class QLineEdit;
class QVBoxLayout;

namespace linewatch::desktop {

class ActionButton;
class FeedForm;
class ProgressLine;

/// Adds one feed: shows what the catalogue says about it, or asks for addresses, asks for a key, and shows
/// how far the adding has come. Main thread.
class AddPage final : public QWidget {
 public:
  struct Addresses {
    /// May be empty.
    std::string timetable, alerts;
  };
  using Wanted = std::variant<CatalogueHit, Addresses>;

  AddPage(SharedWindowTexts texts, SetupServices services, const Wanted& wanted,
          std::function<void(const FeedFindings&)> added);
  /// Cancels the adding.
  ~AddPage() override;

  /// The texts of the fields, e.g. the key; see `setEntries`.
  QStringList entries() const;
  void setEntries(const QStringList& entries);
  /// Gives the focus to the first entry, or to the button that adds.
  void present();
  bool isAdding() const { return adding_ != nullptr; }

 private:
  void showHit(QVBoxLayout& layout);
  void showKey(QVBoxLayout& layout, const CatalogueKey& key);
  void addLink(QVBoxLayout& layout, const char* text, const std::string& url);
  void makeBottom(QVBoxLayout& layout);
  Outcome<FeedProposal> proposal() const;
  void start();
  void cancel();
  void progressDidChange();
  void end(const Outcome<FeedFindings>& result);
  QString inWords(const AddingProgress& progress) const;
  void showRunning(bool isRunning);
  void showFailure(const QString& text);

  SharedWindowTexts texts_;
  SetupServices services_;
  std::optional<CatalogueHit> hit_;
  std::function<void(const FeedFindings&)> added_;
  std::shared_ptr<FeedAdding> adding_;
  /// Null for a hit.
  FeedForm* form_ = nullptr;
  /// Null when the hit needs no key, or has no timetable.
  QLineEdit* key_ = nullptr;
  QWidget* entries_;
  QLabel* note_;
  ProgressLine* line_;
  ActionButton* cancel_;
  ActionButton* add_;
};

}  // namespace linewatch::desktop
