#include "desktop/presence/bus_presence.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QFile>
#include <QStringList>
#include <QVariantMap>
#include <array>
#include <optional>
#include <utility>

#include "desktop/bus_name.h"
#include "desktop/presence/bus_call.h"
#include "desktop/window/portal_setting.h"
#include "shared/environment.h"

// Outside the namespace, as Qt wants it.
static void keepIntrospection() { Q_INIT_RESOURCE(presence); }

namespace linewatch::desktop {

namespace {

const QString kPath = QStringLiteral("/org/linewatch/LineWatch");
const QString kOwnInterface = QStringLiteral("org.linewatch.LineWatch1");
const QString kApplication = QStringLiteral("org.freedesktop.Application");
const QString kProperties = QStringLiteral("org.freedesktop.DBus.Properties");
const QString kIntrospectable = QStringLiteral("org.freedesktop.DBus.Introspectable");
const QString kActivationToken = QStringLiteral("activation-token");
// The name of the token in older desktops.
const QString kStartupId = QStringLiteral("desktop-startup-id");

constexpr int kBusMilliseconds = 2000;
// A panel that is just starting answers when its window is on screen.
constexpr int kRaiseMilliseconds = 10'000;
// RequestName's flags and answers.
constexpr uint kQueue = 0;
constexpr uint kDoNotQueue = 4;
constexpr uint kIsOwner = 1;
constexpr uint kWasOwner = 4;

QDBusMessage requestForName(const std::string& name, uint flags) {
  return busDaemonCall(QStringLiteral("RequestName"), {QString::fromStdString(name), flags});
}

QString introspectionText() {
  keepIntrospection();
  QFile file(QStringLiteral(":/presence/org.linewatch.LineWatch.xml"));
  return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

std::string tokenIn(const QVariant& platformData) {
  const auto data = qdbus_cast<QVariantMap>(platformData);
  return data.value(data.contains(kActivationToken) ? kActivationToken : kStartupId).toString().toStdString();
}

struct NewsProperty {
  const char* name;
  std::string BusNews::*value;
};
constexpr std::array kNewsProperties = {
    NewsProperty{"Status", &BusNews::status}, NewsProperty{"Summary", &BusNews::summary},
    NewsProperty{"Incidents", &BusNews::incidents}, NewsProperty{"Feeds", &BusNews::feeds},
    NewsProperty{"Document", &BusNews::document}};

}  // namespace

/// Answers the calls. Its methods are in a table, so that its introspection is the documented text and not
/// one that Qt makes.
class BusPresence::Object final : public QDBusVirtualObject {
 public:
  explicit Object(QDBusConnection bus) : bus_(std::move(bus)) { bus_.registerVirtualObject(kPath, this); }
  ~Object() override { bus_.unregisterObject(kPath); }

  QDBusConnection& bus() { return bus_; }
  void setRequests(BusRequests requests) { requests_ = std::move(requests); }
  void setNews(BusNews news);

  QString introspect(const QString&) const override { return introspectionText(); }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

 private:
  struct Method {
    const QString& interface;
    const char* name;
    const char* signature;
    QDBusMessage (Object::*answer)(const QDBusMessage& call);
  };
  static const std::array<Method, 9> kMethods;

  void show(const std::string& token) const {
    if (requests_.show) requests_.show(token);
  }
  void refreshNews() const {
    if (requests_.refresh) requests_.refresh();
  }
  std::optional<QVariant> property(const QString& interface, const QString& name) const;

  QDBusMessage introspectThis(const QDBusMessage& call);
  QDBusMessage get(const QDBusMessage& call);
  QDBusMessage getAll(const QDBusMessage& call);
  QDBusMessage set(const QDBusMessage& call);
  QDBusMessage activate(const QDBusMessage& call);
  QDBusMessage open(const QDBusMessage& call);
  QDBusMessage activateAction(const QDBusMessage& call);
  QDBusMessage refresh(const QDBusMessage& call);
  QDBusMessage showPanel(const QDBusMessage& call);

  QDBusConnection bus_;
  BusRequests requests_;
  BusNews news_;
};

const std::array<BusPresence::Object::Method, 9> BusPresence::Object::kMethods = {
    Method{kIntrospectable, "Introspect", "", &Object::introspectThis},
    Method{kProperties, "Get", "ss", &Object::get},
    Method{kProperties, "GetAll", "s", &Object::getAll},
    Method{kProperties, "Set", "ssv", &Object::set},
    Method{kApplication, "Activate", "a{sv}", &Object::activate},
    Method{kApplication, "Open", "asa{sv}", &Object::open},
    Method{kApplication, "ActivateAction", "sava{sv}", &Object::activateAction},
    Method{kOwnInterface, "Refresh", "", &Object::refresh},
    Method{kOwnInterface, "Show", "", &Object::showPanel}};

bool BusPresence::Object::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
  QDBusMessage answer = message.createErrorReply(QDBusError::UnknownMethod, QStringLiteral("no such method"));
  for (const Method& method : kMethods) {
    const bool isMeant = message.member() == QLatin1String(method.name) &&
                         (message.interface().isEmpty() || message.interface() == method.interface);
    if (!isMeant) continue;
    answer =
        message.signature() == QLatin1String(method.signature)
            ? (this->*method.answer)(message)
            : message.createErrorReply(QDBusError::InvalidArgs, QStringLiteral("other arguments expected"));
    break;
  }
  if (message.isReplyRequired()) connection.send(answer);
  return true;
}

void BusPresence::Object::setNews(BusNews news) {
  QVariantMap changed;
  for (const NewsProperty& property : kNewsProperties) {
    if (news.*property.value != news_.*property.value)
      changed.insert(QString::fromLatin1(property.name), QString::fromStdString(news.*property.value));
  }
  news_ = std::move(news);
  if (changed.isEmpty()) return;
  QDBusMessage signal = QDBusMessage::createSignal(kPath, kProperties, QStringLiteral("PropertiesChanged"));
  signal << kOwnInterface << changed << QStringList();
  bus_.send(signal);
}

std::optional<QVariant> BusPresence::Object::property(const QString& interface, const QString& name) const {
  if (!interface.isEmpty() && interface != kOwnInterface) return std::nullopt;
  for (const NewsProperty& property : kNewsProperties) {
    if (name == QLatin1String(property.name)) return QString::fromStdString(news_.*property.value);
  }
  return std::nullopt;
}

QDBusMessage BusPresence::Object::introspectThis(const QDBusMessage& call) {
  return call.createReply(introspectionText());
}

QDBusMessage BusPresence::Object::get(const QDBusMessage& call) {
  const auto value = property(call.arguments().at(0).toString(), call.arguments().at(1).toString());
  if (!value) return call.createErrorReply(QDBusError::UnknownProperty, QStringLiteral("no such property"));
  return call.createReply(QVariant::fromValue(QDBusVariant(*value)));
}

QDBusMessage BusPresence::Object::getAll(const QDBusMessage& call) {
  QVariantMap all;
  for (const NewsProperty& each : kNewsProperties) {
    const QString name = QString::fromLatin1(each.name);
    if (const auto value = property(call.arguments().at(0).toString(), name)) all.insert(name, *value);
  }
  return call.createReply(all);
}

QDBusMessage BusPresence::Object::set(const QDBusMessage& call) {
  return call.createErrorReply(QDBusError::PropertyReadOnly, QStringLiteral("the properties are read-only"));
}

QDBusMessage BusPresence::Object::activate(const QDBusMessage& call) {
  show(tokenIn(call.arguments().at(0)));
  return call.createReply();
}

/// The panel opens no files, so this only shows it.
QDBusMessage BusPresence::Object::open(const QDBusMessage& call) {
  show(tokenIn(call.arguments().at(1)));
  return call.createReply();
}

QDBusMessage BusPresence::Object::activateAction(const QDBusMessage& call) {
  const QString action = call.arguments().at(0).toString();
  if (action == QLatin1String("show")) {
    show(tokenIn(call.arguments().at(2)));
  } else if (action == QLatin1String("refresh")) {
    refreshNews();
  } else {
    return call.createErrorReply(QDBusError::InvalidArgs, QStringLiteral("no such action"));
  }
  return call.createReply();
}

QDBusMessage BusPresence::Object::refresh(const QDBusMessage& call) {
  refreshNews();
  return call.createReply();
}

QDBusMessage BusPresence::Object::showPanel(const QDBusMessage& call) {
  show({});
  return call.createReply();
}

// ---- The presence ----

BusPresence::BusPresence(std::string name, bool hasId) : name_(std::move(name)), hasId_(hasId) {
  const auto bus = name_.empty() ? std::nullopt : sessionBus();
  if (bus && bus->isConnected()) object_ = std::make_unique<Object>(*bus);
}

BusPresence::~BusPresence() {
  if (!object_) return;
  for (const std::string& name : {std::string(kApplicationId), name_})
    object_->bus().send(busDaemonCall(QStringLiteral("ReleaseName"), {QString::fromStdString(name)}));
}

// Qt's own registration would also make the bus report every change of any name.
BusPresence::Standing BusPresence::takeName() {
  if (!object_) return Standing::alone;
  const QDBusMessage reply =
      object_->bus().call(requestForName(name_, kDoNotQueue), QDBus::Block, kBusMilliseconds);
  if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) return Standing::alone;
  const uint answer = reply.arguments().front().toUInt();
  hasName_ = answer == kIsOwner || answer == kWasOwner;
  if (hasName_ && hasId_) object_->bus().send(requestForName(kApplicationId, kQueue));
  return hasName_ ? Standing::first : Standing::second;
}

bool BusPresence::raiseOther(const std::string& activationToken) {
  if (!object_) return false;
  QVariantMap platformData;
  if (!activationToken.empty()) {
    const QString token = QString::fromStdString(activationToken);
    platformData = {{kActivationToken, token}, {kStartupId, token}};
  }
  QDBusMessage call = QDBusMessage::createMethodCall(QString::fromStdString(name_), kPath, kApplication,
                                                     QStringLiteral("Activate"));
  call << platformData;
  call.setAutoStartService(false);
  return object_->bus().call(call, QDBus::Block, kRaiseMilliseconds).type() == QDBusMessage::ReplyMessage;
}

void BusPresence::setRequests(BusRequests requests) {
  if (object_) object_->setRequests(std::move(requests));
}

void BusPresence::setNews(BusNews news) {
  if (object_) object_->setNews(std::move(news));
}

std::string activationTokenOfStart() {
  const std::string token = valueOf(processEnvironment, "XDG_ACTIVATION_TOKEN");
  return token.empty() ? valueOf(processEnvironment, "DESKTOP_STARTUP_ID") : token;
}

}  // namespace linewatch::desktop
