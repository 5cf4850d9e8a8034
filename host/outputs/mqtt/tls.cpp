#include "host/outputs/mqtt/tls.h"

#include <openssl/err.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>

#include <cstdio>
#include <ctime>
#include <utility>

#include "host/base/failure.h"

namespace lm::host::outputs::mqtt {
namespace {

[[noreturn]] void refuse_tls(const std::string& what) {
  const char* cause = ERR_reason_error_string(ERR_peek_last_error());
  ERR_clear_error();
  throw base::Failure(base::kRefused, "MQTT: " + what + ": " + (cause == nullptr ? "unusable" : cause));
}

std::string time_text(const ASN1_TIME* time) {
  std::tm parts{};
  char text[32] = "an unknown time";
  if (ASN1_TIME_to_tm(time, &parts) == 1) std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S UTC", &parts);
  return text;
}

std::string issuer_of(const X509& certificate) {
  char text[256];
  X509_NAME_oneline(X509_get_issuer_name(&certificate), text, sizeof text);
  return text;
}

std::string why_refused(int error, const X509& certificate, const std::string& host) {
  switch (error) {
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY:
    case X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE:
    case X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN:
    case X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT:
      return "the broker's certificate is from an unknown authority: " + issuer_of(certificate);
    case X509_V_ERR_HOSTNAME_MISMATCH:
    case X509_V_ERR_IP_ADDRESS_MISMATCH:
      return "the broker's certificate is not for " + host;
    case X509_V_ERR_CERT_HAS_EXPIRED:
      return "the broker's certificate expired at " + time_text(X509_get0_notAfter(&certificate));
    case X509_V_ERR_CERT_NOT_YET_VALID:
      return "the broker's certificate is valid from " + time_text(X509_get0_notBefore(&certificate)) + " on";
    default:
      return std::string("the broker's certificate is refused: ") + X509_verify_cert_error_string(error);
  }
}

Tls& tls_of(const SSL& connection) {
  return *static_cast<Tls*>(SSL_CTX_get_ex_data(SSL_get_SSL_CTX(&connection), 0));
}

}  // namespace

void Tls::Free::operator()(ssl_ctx_st* context) const { SSL_CTX_free(context); }

Tls::Tls(const std::string& host, const std::string& authorities)
    : host_(host), context_(SSL_CTX_new(TLS_client_method())) {
  if (!context_) refuse_tls("TLS");
  SSL_CTX_set_ex_data(context_.get(), 0, this);
  SSL_CTX_set_min_proto_version(context_.get(), TLS1_2_VERSION);
  SSL_CTX_set_verify(context_.get(), SSL_VERIFY_PEER, verified);
  SSL_CTX_set_info_callback(context_.get(), progressed);
  trust(authorities);
  expect(host);
}

void Tls::trust(const std::string& authorities) {
  if (authorities.empty()) {
    if (SSL_CTX_set_default_verify_paths(context_.get()) != 1) refuse_tls("certificates");
  } else if (SSL_CTX_load_verify_locations(context_.get(), authorities.c_str(), nullptr) != 1) {
    refuse_tls(authorities);
  }
}

void Tls::expect(const std::string& host) {
  X509_VERIFY_PARAM* expected = SSL_CTX_get0_param(context_.get());
  X509_VERIFY_PARAM_set_hostflags(expected, X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS);
  const bool taken = X509_VERIFY_PARAM_set1_ip_asc(expected, host.c_str()) == 1 ||
                     X509_VERIFY_PARAM_set1_host(expected, host.c_str(), host.size()) == 1;
  if (!taken) refuse_tls("host name " + host);
  ERR_clear_error();
}

std::string Tls::take_failure() {
  if (std::exchange(established_, true)) return "";
  const std::string failure = std::exchange(failure_, "");
  return failure.empty() ? "TLS handshake: the broker ended the connection" : failure;
}

int Tls::verified(int good, x509_store_ctx_st* store) {
  if (good == 1) return good;
  const void* connection = X509_STORE_CTX_get_ex_data(store, SSL_get_ex_data_X509_STORE_CTX_idx());
  Tls& tls = tls_of(*static_cast<const SSL*>(connection));
  tls.failure_ = "TLS handshake: " + why_refused(X509_STORE_CTX_get_error(store),
                                                 *X509_STORE_CTX_get_current_cert(store), tls.host_);
  return good;
}

void Tls::progressed(const ssl_st* connection, int where, int result) {
  Tls& tls = tls_of(*connection);
  if ((where & SSL_CB_HANDSHAKE_START) != 0) {
    tls.established_ = false;
    tls.failure_.clear();
  }
  if ((where & SSL_CB_HANDSHAKE_DONE) != 0) tls.established_ = true;
  if (tls.established_ || !tls.failure_.empty()) return;
  const char* cause = nullptr;
  if ((where & SSL_CB_READ_ALERT) == SSL_CB_READ_ALERT) {
    cause = SSL_alert_desc_string_long(result);
  } else if ((where & SSL_CB_EXIT) != 0 && result < 0) {
    cause = ERR_reason_error_string(ERR_peek_last_error());
  }
  if (cause != nullptr) tls.failure_ = std::string("TLS handshake: ") + cause;
}

}  // namespace lm::host::outputs::mqtt
