#pragma once

#include <QByteArray>

class Profile;

/// What a server that encrypts answers to the head of an HTTP request that came unencrypted: what
/// visitors need to come to trust it, see `authorityReply`, or the way to the encrypted page. Empty
/// for what is no such request, and in mode `classic` for all but the first.
QByteArray answerToPlain(const QByteArray &head, const Profile &profile);
