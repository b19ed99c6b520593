#include "author/check/TextPieces.h"

namespace {

constexpr std::wstring_view marks = L"#[]";

class PieceReader {
public:
    explicit PieceReader(std::wstring_view text) : text(text) {}

    std::vector<TextPiece> read() {
        while (at < text.size() && readPiece())
            ;
        return std::move(pieces);
    }

private:
    bool readPiece() {
        switch (text[at]) {
            case L'[':
                return readDirectory();
            case L'#':
                return readVariable();
            case L']':
                return refuse(at, 1, Fault::brackets);
            default:
                readLiteral();
                return true;
        }
    }

    void readLiteral() {
        const size_t end = std::min(text.find_first_of(marks, at), text.size());
        add(TextPiece::literal, text.substr(at, end - at), end);
    }

    bool readDirectory() {
        const size_t end = text.find_first_of(marks, at + 1);
        if (end == std::wstring_view::npos || text[end] != L']' || end == at + 1)
            return refuse(at, std::min(end, text.size() - 1) - at + 1, Fault::brackets);
        add(TextPiece::directory, text.substr(at + 1, end - at - 1), end + 1);
        return true;
    }

    /// A name ends at the next mark or with the text; a mark right behind the "#" stands for
    /// itself.
    bool readVariable() {
        const size_t end = std::min(text.find_first_of(marks, at + 1), text.size());
        if (end == at + 1) {
            if (end == text.size())
                return refuse(at, 1, Fault::numberSign);
            add(TextPiece::literal, text.substr(end, 1), end + 1);
            return true;
        }
        if (end < text.size() && text[end] == L']')
            return refuse(at, end - at + 1, Fault::numberSign);
        add(TextPiece::variable, text.substr(at + 1, end - at - 1), end);
        return true;
    }

    void add(TextPiece::Meaning meaning, std::wstring_view part, size_t end) {
        pieces.push_back({meaning, std::wstring(part), at, end - at});
        at = end;
    }

    bool refuse(size_t from, size_t length, Fault reason) {
        pieces.push_back(
            {TextPiece::fault, std::wstring(text.substr(from, length)), from, length, reason});
        return false;
    }

    std::wstring_view text;
    size_t at = 0;
    std::vector<TextPiece> pieces;
};

}  // namespace

std::vector<TextPiece> piecesOf(std::wstring_view text) {
    return PieceReader(text).read();
}

bool hasReferences(std::wstring_view text) {
    return text.find_first_of(marks) != std::wstring_view::npos;
}
