// Any bytes as a document. What can be read is written back as it was; changes that the bytes themselves
// choose give a text that says what the model says, and taking them back gives the old text.

#include "fuzz/Fuzz.h"
#include "network/NetDice.h"
#include "network/NetModelText.h"
#include "network/NetPlacement.h"
#include "network/NetReader.h"

namespace {

constexpr int kChanges = 4;

const QString kPath = QStringLiteral("/nowhere/document.mtlx");

QStringList modelIn(const QByteArray& text)
{
    const auto document = NetReader(NetSearchPath()).read(kPath, text).document;
    ORV_REQUIRE(document);
    return NetModelText::of(*document);
}

void requireSame(const QStringList& model, const QStringList& wanted)
{
    const QString difference = NetModelText::difference(model, wanted);
    if (!difference.isEmpty())
        qFatal("%s", qPrintable(difference));
}

} // namespace

int LLVMFuzzerInitialize(int*, char***)
{
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray text = Fuzz::bytes(data, size);
    const NetReadResult result = NetReader(NetSearchPath()).read(kPath, text);
    ORV_REQUIRE(result.document || !result.messages.isEmpty());
    if (!result.document)
        return 0;
    NetEditor editor(result.document);
    ORV_REQUIRE(editor.text() == text);
    const QStringList model = NetModelText::of(editor.document());

    NetDice dice(&editor, qHash(text));
    std::vector<NetEditor::ChangePtr> changes;
    for (int i = 0; i < kChanges; ++i) {
        if (NetEditor::ChangePtr change
            = dice.draw(NetDice::Kind(dice.below(NetDice::KindCount)), 8)) {
            change->redo();
            requireSame(NetModelText::of(editor.document()), modelIn(editor.text()));
            changes.push_back(std::move(change));
        }
    }
    while (!changes.empty()) {
        changes.back()->undo();
        changes.pop_back();
    }
    ORV_REQUIRE(editor.text() == text);
    requireSame(NetModelText::of(editor.document()), model);
    return 0;
}
