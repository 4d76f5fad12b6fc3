// The main screen on the Qt option tree (offscreen): the offline run of a
// catalog of 5,000 options up to the filled tree, and one click on the check
// box of a value node with the image, txtCfgEdited and the tree updated in
// place; a keystroke in the search field; an undo of one change. Run beside a virtual module (bench/screens_bench.sh does so) also
// "Read info" of the sample catalog up to the filled tree.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <memory>
#include <string>

#include "CatalogGenerator.h"
#include "editing/OptionEdits.h"
#include "helpers/HexText.h"
#include "helpers/Waiting.h"
#include "mainscreen/frmDeviceCofigurator.h"
#include "ui/MessageBox.h"
#include "ui/ModalDialog.h"
#include "ui/QtWaitContext.h"

namespace {

int messages = 0;

// The generated catalog with one more configuration, I "0", that stands for
// the module's own: the first one's data under the Id 00000000.
std::string CatalogWithModuleConfiguration() {
    std::string text = sb::bench::GenerateCatalog();
    const size_t first = text.find("<C ");
    const size_t data = text.find('>', first) + 1;
    const size_t end = text.find("</C>", data);
    const std::string image = "00000000" + text.substr(data + 8, end - data - 8);
    const std::string attributes = text.substr(first + 3, data - 1 - (first + 3));
    text.insert(text.find("</PDF>"), "<C I=\"0\" " + attributes + ">" + image + "</C>\n");
    return text;
}

class CatalogFile {
public:
    CatalogFile() {
        QFile file(Path());
        const std::string text = CatalogWithModuleConfiguration();
        if (!file.open(QIODevice::WriteOnly) || file.write(text.data(), static_cast<qint64>(text.size())) < 0)
            throw std::runtime_error("cannot write ConfigOptions.xml");
    }
    QString Path() const { return QDir(dir_.path()).filePath(QStringLiteral("ConfigOptions.xml")); }

private:
    QTemporaryDir dir_;
};

int OptionNodes(sb::ui::frmDeviceCofigurator& form) {
    const QTreeWidgetItem* root = form.tvOptions->topLevelItem(0);
    return root ? root->childCount() : 0;
}

void OfflineRunToFilledTree(benchmark::State& state) {
    CatalogFile catalog;
    sb::ui::frmDeviceCofigurator form(catalog.Path().toStdString());
    form.show();
    sb::WaitMs(50);
    for (auto _ : state) {
        form.Command1->click();
        if (OptionNodes(form) == 0) state.SkipWithError("the tree stayed empty");
    }
    state.counters["options shown"] = OptionNodes(form);
    state.counters["messages"] = messages;
}

// The last member of a bit field that the configuration leaves free.
sb::TreeNode* FreeMember(sb::ui::frmDeviceCofigurator& form) {
    const sb::DeviceInfo& device = form.Device();
    const sb::TreeNode* root = form.Tree().Find("CONFIGURATION" + sb::Uint32ToHex(0));
    const int cfg = root ? 0 : device.PredefCfgs.Count() - 1;
    for (int32_t i = device.Options.Count() - 1; i >= 0; --i) {
        const sb::OptionRec& option = device.Options.Items[static_cast<size_t>(i)];
        if (option.Type != "BITFIELD" || option.Values.Count() == 0) continue;
        if (sb::IsLocked(device.PredefCfgs.Items[static_cast<size_t>(cfg)], i)) continue;
        if (sb::TreeNode* member = form.Tree().Find("OPTION" + sb::Uint32ToHex(i) + "_VALUE" + sb::Uint32ToHex(0)))
            return member;
    }
    return nullptr;
}

// The box of a free bit-field member of the form after a read; none, and
// the benchmark skipped, when the catalog has no such member.
QTreeWidgetItem* FreeMemberBoxAfterRead(sb::ui::frmDeviceCofigurator& form, benchmark::State& state) {
    form.show();
    form.Command1->click();
    sb::TreeNode* member = FreeMember(form);
    if (!member) {
        state.SkipWithError("no free bit-field member");
        return nullptr;
    }
    return form.Tree().ItemOf(*member);
}

void CheckBoxClickOnValueNode(benchmark::State& state) {
    CatalogFile catalog;
    sb::ui::frmDeviceCofigurator form(catalog.Path().toStdString());
    QTreeWidgetItem* item = FreeMemberBoxAfterRead(form, state);
    if (!item) return;
    item->parent()->setExpanded(true);
    form.tvOptions->scrollToItem(item);
    sb::WaitMs(50);
    std::string before = form.CfgEditedText();
    for (auto _ : state) {
        // What a click on the box does: the box turns (NodeCheck), then the
        // button comes up (MouseUp).
        item->setCheckState(0, item->checkState(0) == Qt::Checked ? Qt::Unchecked : Qt::Checked);
        emit form.tvOptions->mouseUp();
        if (form.CfgEditedText() == before) state.SkipWithError("the click changed nothing");
        before = form.CfgEditedText();
        state.PauseTiming();
        QApplication::processEvents();  // painting is not part of the click
        state.ResumeTiming();
    }
    state.counters["image bytes"] = static_cast<double>(form.Device().CfgImage.size());
}

// One keystroke in the search field: the filter over all options and the
// tree's rows hidden or shown. Two searches in turn, so that each keystroke
// hides and shows rows.
void SearchKeystroke(benchmark::State& state) {
    CatalogFile catalog;
    sb::ui::frmDeviceCofigurator form(catalog.Path().toStdString());
    form.show();
    form.Command1->click();
    sb::WaitMs(50);
    const QString searches[] = {QStringLiteral("1"), QStringLiteral("12")};
    int turn = 0;
    for (auto _ : state) {
        const QString& text = searches[turn++ % 2];
        form.txtSearch->setText(text);
        emit form.txtSearch->textEdited(text);
        state.PauseTiming();
        QApplication::processEvents();
        state.ResumeTiming();
    }
    int shown = 0;
    const QTreeWidgetItem* root = form.tvOptions->topLevelItem(0);
    for (int i = 0; root && i < root->childCount(); ++i) shown += root->child(i)->isHidden() ? 0 : 1;
    state.counters["options shown"] = shown;
}

// Edit → Undo after a click on a member's box, and Redo in turn: the image
// set back and the tree updated in place.
void UndoOfOneChange(benchmark::State& state) {
    CatalogFile catalog;
    sb::ui::frmDeviceCofigurator form(catalog.Path().toStdString());
    QTreeWidgetItem* item = FreeMemberBoxAfterRead(form, state);
    if (!item) return;
    item->setCheckState(0, item->checkState(0) == Qt::Checked ? Qt::Unchecked : Qt::Checked);
    emit form.tvOptions->mouseUp();
    sb::WaitMs(50);
    bool undo = true;
    std::string before = form.CfgEditedText();
    for (auto _ : state) {
        (undo ? form.mnuUndo : form.mnuRedo)->trigger();
        undo = !undo;
        if (form.CfgEditedText() == before) state.SkipWithError("the step changed nothing");
        before = form.CfgEditedText();
        state.PauseTiming();
        QApplication::processEvents();
        state.ResumeTiming();
    }
    state.counters["image bytes"] = static_cast<double>(form.Device().CfgImage.size());
}

void ReadInfoToFilledTree(benchmark::State& state) {
    if (qEnvironmentVariableIsEmpty("SERVICEBAY_MODULE_PORT")) {
        state.SkipWithError("no virtual module: run under scripts/with-module.sh");
        return;
    }
    sb::ui::frmDeviceCofigurator form;
    form.show();
    // The selection dialog keeps its first module in boot mode.
    sb::ui::SetModalHandler([](QDialog&) {});
    for (auto _ : state) {
        form.cmdRdDevInfo->click();
        if (OptionNodes(form) == 0) state.SkipWithError("the tree stayed empty");
    }
    sb::ui::SetModalHandler({});
    state.counters["options shown"] = OptionNodes(form);
    state.counters["messages"] = messages;
}

}  // namespace

BENCHMARK(OfflineRunToFilledTree)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(CheckBoxClickOnValueNode)->Unit(benchmark::kMillisecond)->Iterations(50);
BENCHMARK(SearchKeystroke)->Unit(benchmark::kMillisecond)->Iterations(50);
BENCHMARK(UndoOfOneChange)->Unit(benchmark::kMillisecond)->Iterations(50);
BENCHMARK(ReadInfoToFilledTree)->Unit(benchmark::kMillisecond)->Iterations(5);

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    sb::ui::QtWaitContext waits;
    sb::SetWaitContext(&waits);
    sb::ui::SetMessageHandler([](const std::string&, sb::ui::MessageButtons) {
        ++messages;
        return sb::ui::MessageAnswer::Ok;
    });
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    sb::ui::SetMessageHandler({});
    sb::SetWaitContext(nullptr);
    return 0;
}
