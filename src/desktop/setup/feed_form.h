#pragma once

#include <QWidget>
#include <optional>
#include <string>

#include "desktop/window/window_texts.h"
#include "feeds/catalogue/feed_proposal.h"
#include "shared/outcome.h"

class QComboBox;
class QLineEdit;

namespace linewatch::desktop {

/// The fields for a feed at pasted addresses or in chosen files: its name, its timetable, its alerts and its
/// key. Main thread.
class FeedForm final : public QWidget {
 public:
  explicit FeedForm(SharedWindowTexts texts);

  void setAddresses(const std::string& timetable, const std::string& alerts);
  /// The feed, or the mistake in an entry.
  Outcome<FeedProposal> proposal() const;
  /// An error of `proposal` in the user's language.
  QString inWords(const Error& error) const;
  std::string name() const { return entries().name; }
  void focusFirstEmpty();

 private:
  QLineEdit* addField(const char* name);
  QLineEdit* addAddressField(const char* name, const char* filter);
  void addKeyFields();
  StoredFeed entries() const;
  FeedKeys keys() const;

  SharedWindowTexts texts_;
  QLineEdit* name_;
  QLineEdit* timetable_;
  QLineEdit* alerts_;
  /// Visible once a key has been entered.
  QWidget* keyRow_ = nullptr;
  QComboBox* keyPlace_ = nullptr;
  QLineEdit* keyName_ = nullptr;
  QLineEdit* key_ = nullptr;
};

}  // namespace linewatch::desktop
