#include "machine/connection_diagnosis.h"

#include <gtest/gtest.h>

#include "temporary_folder.h"

namespace linewatch {
namespace {

using enum ConnectionFailureDiagnosis;

constexpr const char* kHeader =
    "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n";
constexpr const char* kLocalRoute = "eth0\t000200C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0\n";
constexpr const char* kDefaultRoute = "eth0\t00000000\t010200C0\t0003\t0\t0\t0\t00000000\t0\t0\t0\n";
constexpr const char* kRouteThatRejects = "*\t00000000\t00000000\t0201\t0\t0\t0\t00000000\t0\t0\t0\n";
constexpr const char* kRouteThatIsDown = "eth0\t00000000\t010200C0\t0002\t0\t0\t0\t00000000\t0\t0\t0\n";

std::string ipv6Route(const std::string& flags, const std::string& interface) {
  const std::string none(32, '0');
  return none + " 00 " + none + " 00 " + none + " 00000400 00000002 00000000 " + flags + "     " + interface +
         "\n";
}

class ConnectionDiagnosisTest : public testing::Test {
 protected:
  void addRadio(const std::string& name, const std::string& type, bool soft, bool hard = false) {
    const auto radio = files_.radios / name;
    std::filesystem::create_directories(radio);
    writeFile(radio / "type", type + "\n");
    writeFile(radio / "soft", soft ? "1\n" : "0\n");
    writeFile(radio / "hard", hard ? "1\n" : "0\n");
  }
  ConnectionFailureDiagnosis diagnose(const std::string& routes, const std::string& ipv6Routes = {}) {
    writeFile(files_.routes, kHeader + routes);
    writeFile(files_.ipv6Routes, ipv6Routes);
    return diagnoseConnection(files_);
  }

  TemporaryFolder folder_;
  NetworkFiles files_{folder_.path() / "route", folder_.path() / "ipv6_route", folder_.path() / "rfkill"};
};

TEST_F(ConnectionDiagnosisTest, NeedsADefaultRouteForTheInternet) {
  EXPECT_EQ(diagnoseConnection(files_), noInternetConnection) << "the files are missing";
  EXPECT_EQ(diagnose(kLocalRoute), noInternetConnection);
  EXPECT_EQ(diagnose(std::string(kLocalRoute) + kDefaultRoute), other);
  EXPECT_EQ(diagnose(kRouteThatIsDown), noInternetConnection);
  EXPECT_EQ(diagnose(std::string(kLocalRoute) + kRouteThatRejects), noInternetConnection);
  EXPECT_EQ(diagnose(kLocalRoute, ipv6Route("00000003", "eth0")), other);
  EXPECT_EQ(diagnose(kLocalRoute, ipv6Route("00200200", "lo")), noInternetConnection);
  EXPECT_EQ(diagnose(kLocalRoute, ipv6Route("00000201", "eth0")), noInternetConnection)
      << "it rejects packets";
  EXPECT_EQ(diagnose("nonsense\n", "more nonsense\n"), noInternetConnection);
}

TEST_F(ConnectionDiagnosisTest, IsInAirplaneModeWhenEveryRadioIsOff) {
  addRadio("rfkill0", "bluetooth", false);
  EXPECT_EQ(diagnose(kLocalRoute), noInternetConnection) << "no radio carries the internet";
  addRadio("rfkill1", "wlan", true);
  addRadio("rfkill2", "wwan", false, true);
  EXPECT_EQ(diagnose(kLocalRoute), airplaneMode);
  EXPECT_EQ(diagnose(kDefaultRoute), other) << "a cable still works";
  addRadio("rfkill3", "wlan", false);
  EXPECT_EQ(diagnose(kLocalRoute), noInternetConnection);
}

TEST(ConnectionReturnTest, IsReportedOncePerInterruption) {
  ConnectionReturn connection(true);
  EXPECT_FALSE(connection.isBack(true)) << "it was never gone";
  EXPECT_FALSE(connection.isBack(false));
  EXPECT_FALSE(connection.isBack(false));
  EXPECT_TRUE(connection.isBack(true));
  EXPECT_FALSE(connection.isBack(true));
  EXPECT_TRUE(ConnectionReturn(false).isBack(true)) << "it was missing at the start";
}

}  // namespace
}  // namespace linewatch
