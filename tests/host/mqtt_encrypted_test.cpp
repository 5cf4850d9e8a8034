// MQTT over TLS, with Debian's broker and a certificate made for the test.
#include <gmock/gmock.h>

#include <cstdlib>
#include <optional>

#include "host/base/standard_streams.h"
#include "host/outputs/mqtt/mqtt_listener.h"
#include "tests/host/broker.h"

namespace {

using namespace lm::host::base;
using namespace lm::host::events;
using namespace lm::host::outputs::mqtt;
using namespace std::chrono_literals;
using broker::Broker;
using broker::Subscriber;

class EncryptedMqtt : public testing::Test {
 protected:
  void SetUp() override {
    if (!Broker::installed()) GTEST_SKIP() << "mosquitto is not installed";
    if (std::system("openssl version >/dev/null 2>&1") != 0) GTEST_SKIP() << "openssl is not installed";
  }

  // With a self-signed certificate for this name.
  void start_broker(const std::string& name) {
    const std::string command =
        "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 -subj /CN=broker "
        "-addext subjectAltName=" +
        name + " -keyout " + (folder_ / "key") + " -out " + certificate() + " 2>/dev/null";
    ASSERT_EQ(std::system(command.c_str()), 0);
    broker_.emplace("allow_anonymous true\ncertfile " + certificate() + "\nkeyfile " + (folder_ / "key") +
                    "\n");
    broker_->start();
  }

  std::string certificate() const { return folder_ / "certificate"; }

  MqttOptions options(const std::string& authorities) const {
    return {.address = "mqtts://127.0.0.1:" + std::to_string(broker_->port()) + "/home",
            .camera = "hall",
            .authorities = authorities};
  }

  // The message about a connection that must fail.
  std::string errors_of(const std::string& authorities) const {
    CapturedStream errors(stderr);
    MqttListener listener(options(authorities), "", 3s);
    Event event;
    event.id.assign(1, 'a');
    listener.begun(event);
    listener.finish();
    return errors.text();
  }

  program::Folder folder_;
  std::optional<Broker> broker_;
};

// The MQTT library's words for a handshake that failed depend on its version and on when it notices.
const auto kFailed = testing::AnyOf(testing::HasSubstr("TLS error"), testing::HasSubstr("Protocol error"));

TEST_F(EncryptedMqtt, AcceptsAClientThatTrustsItsCertificate) {
  start_broker("IP:127.0.0.1");
  Subscriber reader(*broker_, certificate());
  CapturedStream errors(stderr);
  MqttListener listener(options(certificate()), "", 60s);
  listener.finish();
  EXPECT_TRUE(reader.wait_for("home/hall/availability", "offline"));
  EXPECT_EQ(errors.text(), "");
}

TEST_F(EncryptedMqtt, ReceivesNothingWithAnUntrustedCertificate) {
  start_broker("IP:127.0.0.1");
  const std::string text = errors_of("");  // the system's certificates
  EXPECT_THAT(text, kFailed);
  EXPECT_NE(text.find("4 messages not sent"), std::string::npos) << text;
}

TEST_F(EncryptedMqtt, ReceivesNothingWithACertificateForAnotherHost) {
  start_broker("DNS:elsewhere.example");
  const std::string text = errors_of(certificate());
  EXPECT_THAT(text, kFailed);
  EXPECT_NE(text.find("4 messages not sent"), std::string::npos) << text;
}

TEST_F(EncryptedMqtt, WithoutTheCertificateFileIsRefused) {
  start_broker("IP:127.0.0.1");
  const auto outcome =
      program::run_fake({"-o", "/dev/null", "--mqtt", options("").address, "--mqtt-ca", "/nowhere"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_TRUE(outcome.errors.starts_with("lightmotion: MQTT: /nowhere: ")) << outcome.errors;
}

}  // namespace
