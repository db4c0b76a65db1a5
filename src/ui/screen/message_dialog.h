#pragma once

#include <QWidget>

#include "logging/session_view.h"

// A session's messages and questions as message boxes with buttons of touch height. Each waits until it is answered,
// and is a child of `parent` meanwhile, found by its title.
namespace kalmira {

void tellMessage(QWidget* parent, const Message& message);

// Which answer Enter gives: Yes where it carries on, No where it would end a session or delete something that a key
// pressed once too often should not.
enum class EnterMeans { yes, no };
EnterMeans enterAnswer(Question question);

// A question that comes by itself would be answered by a key or tap that was meant for something else: it is deaf for
// this long.
inline constexpr int kDeafMs = 500;

// Yes or No, by button or by the keys Y and N: true for Yes. Escape and closing the box, also from outside by reject(),
// are No. For the first `deafMs` milliseconds keys and taps are dropped.
bool askMessage(QWidget* parent, const Message& message, EnterMeans enter = EnterMeans::yes, int deafMs = 0);

}  // namespace kalmira
