#pragma once

#include "platform/base/Url.h"

#include <QByteArray>
#include <chrono>
#include <optional>

// Fetching something small from the web while the user waits for it.
namespace WebFetch
{
struct Limits
{
    std::chrono::milliseconds time = std::chrono::seconds(10); // in all, with everything that the server redirects to
    qsizetype size = 1 << 20;                                  // bytes
};

// What lies at an http or https address. None for any other kind of address, when there is no good answer, when a
// redirection leads from https to http or to another scheme, after more than five of them, and when a limit is
// exceeded.
//
// The user sees a wait cursor. Windows are still drawn and can be closed, but what he types, clicks and drops into them
// reaches nothing, now or later, and notifications wait; only a modal dialog that comes up meanwhile can be answered.
// The request says nothing about him or his system, and no cookies are kept.
std::optional<QByteArray> contentsOfURL(const Url &url, const Limits &limits = {});
} // namespace WebFetch
