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
using testing::ContainsRegex;
using testing::HasSubstr;

class EncryptedMqtt : public testing::Test {
 protected:
  void SetUp() override {
    if (!Broker::installed()) GTEST_SKIP() << "mosquitto is not installed";
    if (std::system("openssl version >/dev/null 2>&1") != 0) GTEST_SKIP() << "openssl is not installed";
  }

  // With a self-signed certificate for this name.
  void start_broker(const std::string& name, int days = 2) {
    program::write(folder_ / "extensions", "subjectAltName=" + name + "\n");
    const std::string command =
        "cd " + (folder_ / "") +
        " && exec 2>/dev/null && openssl req -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes "
        "-subj /CN=broker -keyout key -out request && openssl x509 -req -in request -signkey key "
        "-extfile extensions -out certificate -days " +
        std::to_string(days);
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
  EXPECT_THAT(text, HasSubstr(": TLS handshake: the broker's certificate is from an unknown authority: "
                              "/CN=broker; retrying\n"));
  EXPECT_THAT(text, HasSubstr("4 messages not sent"));
}

TEST_F(EncryptedMqtt, ReceivesNothingWithACertificateForAnotherHost) {
  for (const char* name : {"DNS:elsewhere.example", "IP:127.0.0.2"}) {
    start_broker(name);
    const std::string text = errors_of(certificate());
    EXPECT_THAT(text,
                HasSubstr(": TLS handshake: the broker's certificate is not for 127.0.0.1; retrying\n"));
    EXPECT_THAT(text, HasSubstr("4 messages not sent"));
  }
}

TEST_F(EncryptedMqtt, ReceivesNothingWithAnExpiredCertificate) {
  start_broker("IP:127.0.0.1", -1);
  const std::string text = errors_of(certificate());
  EXPECT_THAT(text,
              ContainsRegex(": TLS handshake: the broker's certificate expired at 20[0-9-]+ [0-9:]+ UTC; "
                            "retrying\n"));
  EXPECT_THAT(text, HasSubstr("4 messages not sent"));
}

TEST_F(EncryptedMqtt, ReportsABrokerThatDoesNotEncrypt) {
  broker_.emplace();
  broker_->start();
  EXPECT_THAT(errors_of(""), HasSubstr(": TLS handshake: "));
}

TEST_F(EncryptedMqtt, WithoutTheCertificateFileIsRefused) {
  start_broker("IP:127.0.0.1");
  const auto outcome =
      program::run_fake({"-o", "/dev/null", "--mqtt", options("").address, "--mqtt-ca", "/nowhere"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_TRUE(outcome.errors.starts_with("lightmotion: MQTT: /nowhere: ")) << outcome.errors;
}

}  // namespace
