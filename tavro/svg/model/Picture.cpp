#include "tavro/svg/model/PictureInternal.h"

#include "tavro/runtime/Exceptions.h"
#include "tavro/svg/model/Document.h"
#include "tavro/svg/values/DataUri.h"

#include <map>
#include <mutex>

namespace Vz {

/// The pictures of a document, of those embedded in it and of its copies, which may be on other threads.
class TSVGPictures : public std::enable_shared_from_this<TSVGPictures> {
public:
    /// The picture of the URI, read at this depth of embedding; null where no element has it.
    std::shared_ptr<const TSVGPicture> Find(std::string_view uri, int depth) {
        const std::lock_guard lock(FMutex);
        const auto found = FPlaces.find({uri, depth});
        return found == FPlaces.end() ? nullptr : found->second.Picture.lock();
    }

    /// Shares the picture, which holds so many pixels of what the document may have.
    std::shared_ptr<const TSVGPicture> Share(std::unique_ptr<const TSVGPicture> picture, int depth,
                                             std::uint64_t pixels) {
        const TSVGPicture* const made = picture.get();
        const std::shared_ptr<const TSVGPicture> shared(
            picture.release(), [self = shared_from_this(), depth, pixels](const TSVGPicture* ended) {
                self->Forget(*ended, depth, pixels);
                delete ended;
            });
        const std::lock_guard lock(FMutex);
        FPlaces.erase({made->Uri, depth}); // the key is a view of the picture's own text
        FPlaces.insert({{made->Uri, depth}, {shared, made}});
        return shared;
    }

    /// Takes so many pixels of what a document may hold; false where they are too many. While a text is being
    /// read, pictures that elements have given up again count, too: they were work.
    bool Reserve(std::uint64_t pixels, bool isReading) {
        const std::lock_guard lock(FMutex);
        if (pixels > MostPicturePixels - (isReading ? FReadPixels : FPixels)) return false;
        FPixels += pixels;
        if (isReading) FReadPixels += pixels;
        return true;
    }

private:
    struct TPlace {
        std::weak_ptr<const TSVGPicture> Picture;
        const TSVGPicture* Which = nullptr;
    };

    void Forget(const TSVGPicture& picture, int depth, std::uint64_t pixels) {
        const std::lock_guard lock(FMutex);
        FPixels -= pixels;
        const auto found = FPlaces.find({picture.Uri, depth});
        if (found != FPlaces.end() && found->second.Which == &picture) FPlaces.erase(found);
    }

    std::mutex FMutex;
    std::map<std::pair<std::string_view, int>, TPlace> FPlaces; ///< by URI and depth
    std::uint64_t FPixels = 0;
    std::uint64_t FReadPixels = 0;
};

std::shared_ptr<const TSVGPicture> TSVGPicture::Read(TSVGDocument& document, std::string_view uri) {
    if (!document.FPictures) document.FPictures = std::make_shared<TSVGPictures>();
    TSVGPictures& pictures = *document.FPictures;
    const int depth = document.GetEmbeddingDepth();
    if (auto found = pictures.Find(uri, depth); found && !found->IsTooMuch) return found;
    auto picture = std::make_unique<TSVGPicture>();
    picture->Uri = uri;
    std::uint64_t pixels = 0;
    try {
        const auto content = ReadDataUri(uri);
        if (content && content->starts_with("\x89PNG")) {
            const std::uint64_t claimed = CountPngPixels(*content);
            picture->IsTooMuch = !pictures.Reserve(claimed, document.FReadPlace != nullptr);
            if (!picture->IsTooMuch) {
                pixels = claimed; // also those of a picture that turns out to be broken: it was work
                picture->Bitmap = DecodePng(*content);
            }
        } else if (content && depth < TSVGDocument::MaxEmbedding &&
                   content->find("<svg") != std::string::npos) {
            auto embedded = std::make_shared<TSVGDocument>();
            embedded->LoadEmbedded(*content, document);
            picture->Embedded = std::move(embedded);
        }
    } catch (const EVZError&) {
        // The picture shows nothing.
    }
    return pictures.Share(std::move(picture), depth, pixels);
}

std::string TSVGPicture::Fault() const {
    if (IsTooMuch)
        return "left out, because the document has more than " + std::to_string(MostPicturePixels) +
               " pixels of pictures:";
    return Bitmap || Embedded ? "" : "cannot read";
}

} // namespace Vz
