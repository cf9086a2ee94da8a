#pragma once

#include <QByteArray>

class Profile;
struct Reached;

/// What a server that encrypts, `reached` there, answers to the head of an HTTP request that came
/// unencrypted: what visitors need to come to trust it, see `authorityReply`, or the way to the
/// encrypted page; in a strict profile only to who calls it by a name of its own. Empty for what is
/// no such request, and in mode `classic` for all but the first.
QByteArray answerToPlain(const QByteArray &head, const Reached &reached, const Profile &profile);
