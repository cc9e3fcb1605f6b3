// What the commands of menu, buttons and keys do.
#include "Clipboard.h"
#include "Clock.h"
#include "CommandText.h"
#include "ImageFiles.h"
#include "MainWindow.h"
#include "Outputs.h"
#include "StatusText.h"
#include "Text.h"
#include "Version.h"

namespace z3d::viewer {

namespace {

// Beside the volume, under its name.
std::filesystem::path Proposal(const Source& source, const wchar_t* ending) {
    if (source.IsPhantom()) return std::wstring(L"head") + ending;
    std::wstring name = source.paths.front().filename().native();
    name = name.substr(0, name.find(L'.'));
    return (name.empty() ? L"picture" : name) + ending;
}

} // namespace

void MainWindow::Do(Command command) {
    if (!Perform(state_, command, picture_->Fitting())) return DoOutside(command);
    // A spin goes on by the pictures that arrive: the first is asked for here.
    if (command == Command::Spin && state_.spinning && volume_ != nullptr) {
        spunAt_ = tools::SecondsNow();
        Ask();
    }
    Changed();
}

void MainWindow::DoOutside(Command command) {
    switch (command) {
    case Command::Open:
        return OpenByDialog();
    case Command::ShowPhantom:
        return Open({});
    case Command::SavePicture:
        return Save(SaveKind::Picture);
    case Command::SaveValues:
        return Save(SaveKind::Values);
    case Command::CopyPicture:
        return CopyShownPicture();
    case Command::CopyCommand:
        return CopyShownCommand();
    case Command::CancelLoad:
        if (!loader_->Running()) return;
        loader_->Cancel();
        loading_->Hide();
        return Resize();
    case Command::ShowKeys:
        return Inform(window_, "Mouse and keys", KeysText());
    case Command::About:
        return Inform(window_, "About Zentra view", "A window on " + tools::VersionText());
    case Command::Exit:
        DestroyWindow(window_);
        return;
    default:
        return;
    }
}

void MainWindow::OpenByDialog() {
    const Source source = {AskForVolume(window_), 0};
    if (!source.IsPhantom()) Open(source);
}

// What is shown now, whatever is shown when the question is answered.
void MainWindow::Save(SaveKind kind) {
    const std::shared_ptr<const Frame> frame = picture_->Shown();
    if (frame == nullptr) return;
    const bool picture = kind == SaveKind::Picture;
    const auto path =
        AskWhereToSave(window_, kind, Proposal(frame->volume->source, picture ? L".png" : L"-values.nhdr"));
    if (!path) return;
    try {
        const std::vector<tools::Output> outputs = tools::ParseOutputs({tools::Shown(*path)});
        tools::CheckDistinct(tools::FilesOf(outputs, {0, 0}), frame->volume->files);
        tools::WriteOutput(outputs.front(), {0, 0}, *frame->projection, tools::EncodePng(frame->picture));
        state_.message = "saved " + tools::Shown(*path);
    } catch (const std::exception& problem) {
        Warn(window_, problem.what());
    }
}

void MainWindow::CopyShownPicture() {
    if (picture_->Shown() == nullptr) return;
    const bool copied = CopyPicture(window_, picture_->Shown()->picture);
    state_.message = copied ? "picture copied" : "the picture could not be copied";
}

void MainWindow::CopyShownCommand() {
    if (picture_->Shown() == nullptr) return;
    const bool copied = CopyText(window_, ShownCommand());
    state_.message = copied ? "command line copied" : "the command line could not be copied";
}

std::string MainWindow::ShownCommand() const {
    const Frame* const frame = picture_->Shown().get();
    return frame == nullptr ? "" : CommandText(frame->view, frame->volume->source);
}

} // namespace z3d::viewer
