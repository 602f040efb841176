#pragma once
// The expressions that find each kind of value in a log, built from the
// values of this machine and user. Both matching engines read the same list.
#include <string>
#include <vector>

// In order of precedence: where two matches cover the same text, the kind
// listed first wins.
enum class ValueKind { kHome, kEmail, kHost, kIpv6, kMac, kIpv4, kUser, kWord };

struct ValuePattern {
  ValueKind kind;
  std::string expression;  // caseless, in the syntax RE2 and Hyperscan share
};

// The machine's and the client's names, and the user's.
struct LocalValues {
  std::vector<std::string> hosts;    // exact names, their domains below them too
  std::vector<std::string> users;    // login and real name, whole words
  std::vector<std::string> words;    // --mask-word and --mask-file
  std::string home;                  // the home folder, without a trailing "/"
};

std::vector<ValuePattern> BuildValuePatterns(const LocalValues& values);

// The domain a host name has ("norvex.example" of "broker.norvex.example"),
// or "" for a single label or a bare domain.
std::string DomainOf(const std::string& host);
