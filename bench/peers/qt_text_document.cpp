// Qt's QTextDocument, with fonts of the machine, which it shapes.
#include <QByteArray>
#include <QFont>
#include <QGuiApplication>
#include <QSizeF>
#include <QString>
#include <QTextDocument>
#include <QTextOption>

#include "compare_peer.h"
#include "peer_documents.h"
#include "richtext/style/style_sheet.h"

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const std::string_view sheet = mvp::richtext::BuiltInStyleSheet();
    const QString sheetText =
        QString::fromLatin1(sheet.data(), static_cast<qsizetype>(sheet.size()));
    QFont font;
    font.setPixelSize(mvp::bench::kPeerFontSize);
    // Otherwise it breaks words to keep a table within the width, which nobody else does.
    QTextOption option;
    option.setWrapMode(QTextOption::WordWrap);
    const auto layOut = [&](const std::string& strHtml) {
        QTextDocument document;
        document.setUndoRedoEnabled(false);
        document.setDefaultFont(font);
        document.setDefaultTextOption(option);
        document.setDefaultStyleSheet(sheetText);
        document.setHtml(QString::fromLatin1(strHtml.data(), qsizetype(strHtml.size())));
        document.setTextWidth(mvp::bench::kPeerWidth);
        return static_cast<std::int32_t>(document.size().height());
    };
    mvp::bench::ComparePeer(
        {std::string("QTextDocument, Qt ") + qVersion(), mvp::bench::ToHtml, layOut});
    return 0;
}
