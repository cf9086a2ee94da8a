#pragma once

class QHostAddress;
struct ProfileValues;

/// Whether `address` is one of those that the profile takes for proxies.
bool isTrustedProxy(const QHostAddress &address, const ProfileValues &profile);
