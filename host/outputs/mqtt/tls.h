// The encryption of a connection.
#pragma once

#include <memory>
#include <string>

struct ssl_st;
struct ssl_ctx_st;
struct x509_store_ctx_st;

namespace lm::host::outputs::mqtt {

// Verifies the broker's certificate, and records why a handshake failed, which libmosquitto does not report.
class Tls {
 public:
  // `authorities`: file with trusted certificates; the system's if empty. Throws Failure (kRefused).
  Tls(const std::string& host, const std::string& authorities);
  Tls(const Tls&) = delete;
  Tls& operator=(const Tls&) = delete;

  // For the connections of a client, one after the other.
  ssl_ctx_st* context() const { return context_.get(); }

  // Whether the last handshake succeeded, or its failure has been taken.
  bool established() const { return established_; }

  // Why the last handshake failed; empty if it did not, or has been asked for.
  std::string take_failure();

 private:
  struct Free {
    void operator()(ssl_ctx_st* context) const;
  };
  static int verified(int good, x509_store_ctx_st* store);
  static void progressed(const ssl_st* connection, int where, int result);
  void trust(const std::string& authorities);
  void expect(const std::string& host);

  std::string host_;
  std::unique_ptr<ssl_ctx_st, Free> context_;
  std::string failure_;
  bool established_ = true;
};

}  // namespace lm::host::outputs::mqtt
