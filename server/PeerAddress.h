#pragma once

#include <QHostAddress>

/// Who is counted as one: an IPv6 address by its network of 64 bits, as its owner may use all the
/// others; an IPv4 one that is written as IPv6 by itself.
QHostAddress peerOf(const QHostAddress &address);

/// The same of who came to `reached`, an address of ours: in one network with us each address is
/// that of another device.
QHostAddress peerOf(const QHostAddress &address, const QHostAddress &reached);

/// Whether one of this machine's interfaces has it by now.
bool isOwnAddress(const QHostAddress &address);
