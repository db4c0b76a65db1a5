#pragma once

#include <QWidget>

#include "logging/session_view.h"

// A session's messages and questions as message boxes with buttons of touch height. Each waits until it is
// answered, and is a child of `parent` meanwhile, found by its title.
namespace kalmira {

void tellMessage(QWidget* parent, const Message& message);

// Which answer Enter gives: Yes where it carries on, No where it would end a session or delete something that
// a key pressed once too often should not.
enum class EnterMeans { yes, no };
EnterMeans enterMeans(Question question);

// Yes or No, by button or by the keys Y and N: true for Yes. Escape and closing the box, also from outside by
// reject(), are No.
bool askMessage(QWidget* parent, const Message& message, EnterMeans enter = EnterMeans::yes);

}  // namespace kalmira
