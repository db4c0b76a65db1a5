#include <QLabel>
#include <QLineEdit>

#include "settings/comment_hint.h"
#include "ui/screen/template_dialog.h"
#include "ui/session/dialogs.h"

namespace kalmira {
namespace {

constexpr int kMostCharacters = 512;

}  // namespace

CommentOutcome runCommentDialog(QWidget* parent) {
  using How = CommentOutcome::How;
  const auto dialog = makeDialog("GetComment", parent);
  if (dialog == nullptr) return {};
  auto& comment = part<QLineEdit>(*dialog, "comment");
  auto& hint = part<QLabel>(*dialog, "hint");
  comment.setMaxLength(kMostCharacters);
  const auto showHint = [&hint, &comment] {
    hint.setText(QString::fromStdString(commentHint(typedText(comment))));
  };
  QObject::connect(&comment, &QLineEdit::textChanged, &hint, showHint);
  showHint();
  const bool confirmed = runDialog(*dialog);
  CommentOutcome outcome{.how = How::confirmed, .text = typedText(comment)};
  if (!confirmed) outcome.how = outcome.text.empty() ? How::cancelledEmpty : How::cancelledWithText;
  return outcome;
}

}  // namespace kalmira
