#include "copy/jobs/new_image.h"

#include "copy/jobs/hash_files.h"
#include "copy/jobs/image_names.h"

namespace torvane {

namespace {

bool isTaken(const CopyJob& job, const DriveRecord& source, const ImageFileName& name) {
    const std::string_view model = source.model.view();
    return job.system.fileExists(name.path) || job.system.fileExists(sha256FileName(name.path)) ||
           job.system.fileExists(mapFileName(name.path)) ||
           job.system.fileExists(hashFileName(job.order.path, model, name.number)) ||
           job.system.fileExists(acquisitionFileName(job.order.path, model, name.number));
}

} // namespace

NewImage createNumberedImage(const CopyJob& job, const DriveRecord& source) {
    ImageFileName name;
    for (int tried = 0; tried < kMostNumbersTried; ++tried) {
        name = job.system.nextImageName(job.order.path, source);
        if (isTaken(job, source, name)) {
            continue;
        }
        std::unique_ptr<ImageFile> file = job.system.openImage(name.path, ImageUse::kNew);
        // One that is there now was made by somebody else since: the next number.
        if (file || !job.system.fileExists(name.path)) {
            return {std::move(name), std::move(file)};
        }
    }
    job.system.logError("No image number is free after [" + name.path + "]");
    return {};
}

} // namespace torvane
