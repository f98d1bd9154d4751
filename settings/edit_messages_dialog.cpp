#include "settings/edit_messages_dialog.h"

#include "base/wide_text.h"
#include "resources/resource_ids.h"
#include "settings/messages.h"
#include "state/event_log.h"
#include "ui/control_text.h"
#include "ui/dialog.h"
#include "ui/edit_text.h"
#include "ui/prompts.h"

namespace torvane {

namespace {

class EditMessagesDialog : public Dialog {
  public:
    explicit EditMessagesDialog(MessageTable& messages)
        : Dialog(IDD_EDIT_MESSAGES), messages_(messages), edited_(messages) {}

  protected:
    bool onInitialise() override {
        for (std::size_t i = 0; i < messageCount(edited_); ++i) {
            SendMessageW(choice(), CB_ADDSTRING, 0,
                         reinterpret_cast<LPARAM>(wideText(messageTitle(edited_[i])).c_str()));
        }
        SendMessageA(textControl(), EM_SETLIMITTEXT, kTextRoom, 0);
        SendMessageA(choice(), CB_SETCURSEL, 0, 0);
        showChosenMessage();
        return true;
    }

    bool onCommand(int id) override {
        static constexpr CommandRoute<EditMessagesDialog> kRoutes[] = {
            {IDC_MESSAGE_CHOICE, &EditMessagesDialog::onOtherMessage},
            {IDM_UPDATE_MESSAGES, &EditMessagesDialog::onUpdate},
            {IDM_EXIT_MESSAGE_EDITOR, &EditMessagesDialog::onExit},
            {IDCANCEL, &EditMessagesDialog::onExit},
        };
        return route(*this, kRoutes, id);
    }

    // The control's own limit counts characters, of which one takes up to four bytes.
    void onTextChange(int) override { keepWithinBytes(textControl(), kTextRoom); }

  private:
    static constexpr std::size_t kTextRoom = std::tuple_size_v<decltype(MessageRecord::text)> - 1;
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    [[nodiscard]] HWND choice() const { return control(IDC_MESSAGE_CHOICE); }
    [[nodiscard]] HWND textControl() const { return control(IDC_MESSAGE_TEXT); }

    void onOtherMessage() {
        takeText();
        showChosenMessage();
    }

    void onUpdate() {
        takeText();
        if (saveMessages(messages_, edited_) == 0) {
            prompts::stop("***** ERROR ON MESSAGE FILE SAVE *****",
                          "Could not write the message file. The messages in use stay as they were.");
            return;
        }
        changed_ = false;
        LogEvent("SUCCESS", "Message file SAVED");
        prompts::inform("***** MESSAGE FILE SAVED *****", "Message file successfully saved.");
    }

    void onExit() {
        takeText();
        if (!changed_ || prompts::ask("***** MESSAGES NOT UPDATED *****",
                                      "The messages were edited but not updated. Do you want to drop the changes?")) {
            end(1);
        }
    }

    void showChosenMessage() {
        const LRESULT selected = SendMessageA(choice(), CB_GETCURSEL, 0, 0);
        const auto index = static_cast<std::size_t>(selected);
        shown_ = selected >= 0 && index < edited_.size() ? index : kNone;
        EnableWindow(textControl(), shown_ != kNone);
        showText(shown_ != kNone ? edited_[shown_] : MessageRecord());
    }

    /// Leaves the control alone, and with it the place of the typist, when it shows the text already.
    void showText(const MessageRecord& message) {
        const std::string text(messageText(message));
        if (typedText() != text) {
            setWindowText(textControl(), text);
        }
        shownText_ = typedText();
    }

    [[nodiscard]] std::string typedText() const { return controlText(textControl()); }

    /// Moves what was typed into the message it was typed for.
    void takeText() {
        const std::string text = typedText();
        // Compared with what the control made of the message, so that a message it cannot show exactly stays as it is.
        if (shown_ != kNone && text != shownText_) {
            setMessageText(edited_[shown_], text);
            showText(edited_[shown_]); // what is kept is what is seen
            changed_ = true;
        }
    }

    MessageTable& messages_;
    MessageTable edited_;
    std::size_t shown_ = kNone; ///< the message in the text control
    std::string shownText_;     ///< the control's text when it was filled
    bool changed_ = false;      ///< `edited_` differs from the file
};

} // namespace

void editMessages(MessageTable& messages, HWND owner) {
    EditMessagesDialog(messages).runModal(owner);
}

} // namespace torvane
