#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <algorithm>
#include <optional>
#include <stop_token>
#include <string>

#include "feeds/http/http_fetcher.h"
#include "shared/byte_size.h"
#include "shared/failure.h"

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

Error failed(std::string_view why) { return failure("it cannot be fetched", "", why); }

/// Qt's own words serve a programmer where it has been told too little of what happened.
std::string whyFailed(const QNetworkReply& reply) {
  switch (reply.error()) {
    case QNetworkReply::ProtocolUnknownError:
      return "the server refers to an address that is none of http or https";
    case QNetworkReply::UnknownContentError:
      return "what the server packed cannot be unpacked";
    default:
      return reply.errorString().toStdString();
  }
}

/// One exchange: gathers the body as it comes and gives up when it grows too large or takes too long.
class Exchange {
 public:
  Exchange(const HttpRequest& request, QNetworkReply& reply) : request_(request), reply_(reply) {
    QObject::connect(&reply_, &QNetworkReply::readyRead, &loop_, [this] { take(); });
    QObject::connect(&reply_, &QNetworkReply::finished, &loop_, &QEventLoop::quit);
    QObject::connect(&deadline_, &QTimer::timeout, &loop_, [this] { giveUp("it took too long"); });
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
    const QNetworkReply::NetworkError error = reply_.error();
    if (status == 304) return response(true);
    if (status == 200 && error == QNetworkReply::NoError) return response(false);
    if (status < 400 && error != QNetworkReply::NoError) return failed(whyFailed(reply_));
    return failed("the server answers with status " + std::to_string(status));
  }

 private:
  void take() {
    if (whyGivenUp_) return;
    const QByteArray chunk = reply_.readAll();
    if (body_.size() + static_cast<std::size_t>(chunk.size()) > request_.maximumBytes) {
      giveUp("it is larger than " + sizeInWords(request_.maximumBytes));
      return;
    }
    // Grown step by step, a large body would for moments need twice its memory.
    if (body_.empty()) body_.reserve(std::min(statedSize(), request_.maximumBytes));
    body_.insert(body_.end(), chunk.begin(), chunk.end());
  }
  std::size_t statedSize() const { return reply_.header(QNetworkRequest::ContentLengthHeader).toULongLong(); }
  void stopFromAnyThread() {
    QMetaObject::invokeMethod(
        &loop_, [this] { giveUp("no longer wanted"); }, Qt::QueuedConnection);
  }
  void giveUp(std::string why) {
    whyGivenUp_ = std::move(why);
    reply_.abort();
    loop_.quit();
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
    const QNetworkRequest conditional = conditionalRequest(request);
    if (!conditional.url().isValid() || conditional.url().host().isEmpty())
      return failed("that is no address of a server");
    QNetworkAccessManager manager;
    manager.setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
    const std::unique_ptr<QNetworkReply> reply(manager.get(conditional));
    return Exchange(request, *reply).run();
  }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) void linewatch_makeHttpFetcher(
    std::shared_ptr<HttpFetcher>& fetcher) {
  fetcher = std::make_shared<QtHttpFetcher>();
}

}  // namespace linewatch::desktop
