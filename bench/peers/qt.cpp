// Qt: its pull parser, whose interface is closest to ours, and its tree. Both keep UTF-16, as we do.

#include <QBuffer>
#include <QDomDocument>
#include <QTextStream>
#include <QXmlSimpleReader>
#include <QXmlStreamReader>
#include <stdexcept>

#include "contest/Contender.h"

namespace LumBench {
namespace {

/// The bytes of the input, not copied.
QByteArray bytesOf(const Input& input) {
    return QByteArray::fromRawData(input.bytes.data(), static_cast<int>(input.bytes.size()));
}

class Parse {
public:
    explicit Parse(const Input& input) : input_(input) {}

    Answer count() {
        Answer answer;
        forEachToken([&](QXmlStreamReader::TokenType token) {
            if (token == QXmlStreamReader::StartElement) {
                ++answer.elements;
                answer.attributes += static_cast<std::size_t>(reader_.attributes().size());
            } else if (token == QXmlStreamReader::Characters) {
                answer.textUnits += static_cast<std::size_t>(reader_.text().size());
            }
        });
        return answer;
    }

    std::size_t touch() {
        std::size_t seen = 0;
        forEachToken([&](QXmlStreamReader::TokenType token) {
            if (token == QXmlStreamReader::Characters) {
                seen += static_cast<std::size_t>(reader_.text().size()) + firstOf(reader_.text());
            } else if (token == QXmlStreamReader::StartElement || token == QXmlStreamReader::EndElement) {
                seen += firstOf(reader_.name()) + firstOf(reader_.namespaceUri());
                if (token == QXmlStreamReader::EndElement) return;
                const QXmlStreamAttributes attributes = reader_.attributes();
                for (const QXmlStreamAttribute& attribute : attributes) {
                    seen += firstOf(attribute.name()) + firstOf(attribute.namespaceUri()) + firstOf(attribute.value());
                }
            }
        });
        return seen;
    }

private:
    static std::size_t firstOf(const QStringRef& text) { return text.isEmpty() ? 0 : text[0].unicode(); }

    template <class Visit>
    void forEachToken(Visit visit) {
        reader_.clear();
        reader_.addData(bytesOf(input_));
        while (!reader_.atEnd()) visit(reader_.readNext());
        if (reader_.hasError()) throw std::runtime_error("Qt refuses " + input_.name);
    }

    const Input& input_;
    QXmlStreamReader reader_;
};

struct LookUp {
    explicit LookUp(const std::vector<std::string>& texts) {
        for (const std::string& text : texts) names.push_back(QString::fromStdString(text));
    }
    std::vector<QString> names;
};

class Tree {
public:
    /// By the older of its two readers: the other one drops texts of white space, which we keep.
    explicit Tree(const Input& input) {
        QXmlInputSource source;
        source.setData(bytesOf(input));
        QXmlSimpleReader reader;
        reader.setFeature(QLatin1String("http://qt-project.org/xml/features/report-whitespace-only-CharData"), true);
        if (!document_.setContent(&source, &reader)) throw std::runtime_error("Qt refuses " + input.name);
    }

    Answer count() const {
        Answer answer;
        forEachNode([&](const QDomNode& node) {
            if (node.isElement()) {
                ++answer.elements;
                const QDomNamedNodeMap attributes = node.attributes();
                for (int i = 0; i < attributes.count(); ++i) {
                    answer.attributes += !attributes.item(i).nodeName().startsWith(QLatin1String("xmlns"));
                }
            } else if (node.isText()) {  // also CDATA
                answer.textUnits += static_cast<std::size_t>(node.nodeValue().size());
            }
        });
        return answer;
    }

    void save(std::string& bytes) const {
        QByteArray saved;
        QTextStream stream(&saved);
        stream.setCodec("UTF-8");
        document_.save(stream, -1, QDomNode::EncodingFromTextStream);
        stream.flush();
        bytes.assign(saved.constData(), static_cast<std::size_t>(saved.size()));
    }

    std::size_t walk() const {
        std::size_t seen = 0;
        forEachNode([&](const QDomNode& node) { seen += static_cast<std::size_t>(node.nodeName().size()); });
        return seen;
    }

    std::size_t lookUp(const LookUp& lookUp, Hits* hits) const {
        std::size_t seen = 0;
        forEachNode([&](const QDomNode& node) {
            if (!node.isElement()) return;
            const QDomElement element = node.toElement();
            for (const QString& name : lookUp.names) {
                const QString value = element.attribute(name);
                if (value.isNull()) continue;
                seen += static_cast<std::size_t>(value.size());
                if (hits) ++hits->values, hits->units += static_cast<std::size_t>(value.size());
            }
        });
        return seen;
    }

private:
    template <class Visit>
    void forEachNode(Visit visit) const {
        const QDomNode root = document_.documentElement();
        QDomNode node = root;
        while (!node.isNull()) {
            visit(node);
            QDomNode next = node.firstChild();
            while (next.isNull() && node != root) {
                next = node.nextSibling();
                if (next.isNull()) node = node.parentNode();
            }
            node = next;
        }
    }

    QDomDocument document_;
};

}  // namespace

std::vector<Entry> entries() {
    return {
        {"events", "QXmlStreamReader", make<EventsTrial<Parse, false>>},
        {"events-kept", "QXmlStreamReader", make<EventsTrial<Parse, true>>},
        {"tree", "QDomDocument", make<TreeTrial<Tree>>},
        {"save", "QDomDocument", make<SaveTrial<Tree>>},
        {"walk", "QDomDocument", make<WalkTrial<Tree>>},
        {"attribute", "QDomDocument", make<AttributeTrial<Tree, LookUp>>},
    };
}

}  // namespace LumBench
