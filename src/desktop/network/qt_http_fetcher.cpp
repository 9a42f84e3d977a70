#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <optional>
#include <stop_token>
#include <string>

#include "desktop/http_fetcher.h"

namespace linewatch::desktop {

namespace {

std::string text(const QByteArray& bytes) { return bytes.toStdString(); }

QNetworkRequest conditionalRequest(const HttpRequest& request) {
  QNetworkRequest conditional(QUrl(QString::fromStdString(request.url)));
  conditional.setRawHeader("User-Agent", "LineWatch");
  if (!request.etag.empty())
    conditional.setRawHeader("If-None-Match", QByteArray::fromStdString(request.etag));
  if (!request.lastModified.empty()) {
    conditional.setRawHeader("If-Modified-Since", QByteArray::fromStdString(request.lastModified));
  }
  return conditional;
}

/// One exchange: gathers the body as it comes and gives up when it grows too large or takes too long.
class Exchange {
 public:
  Exchange(const HttpRequest& request, QNetworkReply& reply) : request_(request), reply_(reply) {
    QObject::connect(&reply_, &QNetworkReply::readyRead, &loop_, [this] { take(); });
    QObject::connect(&reply_, &QNetworkReply::finished, &loop_, &QEventLoop::quit);
    QObject::connect(&deadline_, &QTimer::timeout, &loop_, [this] { giveUp("timed out"); });
    deadline_.setSingleShot(true);
    // What is not taken yet stays with the server, not in memory a second time.
    reply_.setReadBufferSize(1 << 20);
  }

  Outcome<HttpResponse> run() {
    deadline_.start(std::chrono::duration_cast<std::chrono::milliseconds>(request_.timeout));
    const std::stop_callback stopping(request_.stop, [this] { stopFromAnyThread(); });
    if (!reply_.isFinished()) loop_.exec();
    take();
    if (whyGivenUp_) return failed(*whyGivenUp_);
    const int status = reply_.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (status == 304) return response(true);
    if (status >= 400) return failed("status " + std::to_string(status));
    if (reply_.error() != QNetworkReply::NoError) return failed(reply_.errorString().toStdString());
    if (status != 200) return failed("status " + std::to_string(status));
    return response(false);
  }

 private:
  void take() {
    if (whyGivenUp_) return;
    const QByteArray chunk = reply_.readAll();
    if (body_.size() + static_cast<std::size_t>(chunk.size()) > request_.maximumBytes) {
      giveUp("larger than " + std::to_string(request_.maximumBytes) + " bytes");
      return;
    }
    body_.insert(body_.end(), chunk.begin(), chunk.end());
  }
  void stopFromAnyThread() {
    QMetaObject::invokeMethod(
        &loop_, [this] { giveUp("no longer wanted"); }, Qt::QueuedConnection);
  }
  void giveUp(std::string why) {
    whyGivenUp_ = std::move(why);
    reply_.abort();
    loop_.quit();
  }
  /// Passwords are nobody's business who reads the error.
  Error failed(const std::string& why) const {
    const QString url = QUrl(QString::fromStdString(request_.url)).toString(QUrl::RemoveUserInfo);
    return failure("cannot fetch " + url.toStdString(), "", why);
  }
  HttpResponse response(bool notModified) {
    return {.notModified = notModified,
            .body = notModified ? Bytes() : std::move(body_),
            .etag = text(reply_.rawHeader("ETag")),
            .lastModified = text(reply_.rawHeader("Last-Modified"))};
  }

  const HttpRequest& request_;
  QNetworkReply& reply_;
  QEventLoop loop_;
  QTimer deadline_;
  Bytes body_;
  std::optional<std::string> whyGivenUp_;
};

class QtHttpFetcher final : public HttpFetcher {
 public:
  // A manager belongs to one thread, and one fetch is all that a thread of ours does.
  Outcome<HttpResponse> fetch(const HttpRequest& request) override {
    QNetworkAccessManager manager;
    manager.setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
    const std::unique_ptr<QNetworkReply> reply(manager.get(conditionalRequest(request)));
    return Exchange(request, *reply).run();
  }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) HttpFetcher* linewatch_makeHttpFetcher() {
  return new QtHttpFetcher;
}

}  // namespace linewatch::desktop
