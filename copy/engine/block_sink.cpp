#include "copy/engine/block_sink.h"

#include "copy/engine/block_io.h"

namespace torvane {

TransferOutcome DriveSink::store(const BlockExtent& extent, std::span<const std::byte> bytes) {
    const TransferOutcome outcome = WriteBlock(io_, drive_, bytes, extent.offset);
    flushing_.stored(extent, outcome);
    used_ = true;
    gone_ = outcome == TransferOutcome::kGone;
    storedAny_ = storedAny_ || outcome == TransferOutcome::kWhole;
    shutOut_ = shutOut_ || (storedAny_ && outcome == TransferOutcome::kRefused);
    return outcome;
}

TransferOutcome DriveSink::flush(UnflushedBlocks rest) {
    const TransferOutcome outcome = flushing_.finish(rest);
    if (hasFailed(outcome)) {
        ++drive_.writeErrorCount;
    }
    gone_ = gone_ || outcome == TransferOutcome::kGone;
    return outcome;
}

ImageSink::ImageSink(std::unique_ptr<ImageFile> image) : image_(std::move(image)) {
    if (image_) {
        flushing_ = std::make_unique<FlushBehind>([file = image_.get()] { return file->flush(); });
    }
}

void ImageSink::close() {
    if (flushing_) {
        static_cast<void>(flushing_->finish(UnflushedBlocks::kLeave)); // a flush under way may be one that fails
        doubtful_ = flushing_->doubtful();
    }
    flushing_.reset();
    image_.reset();
}

TransferOutcome ImageSink::store(const BlockExtent& extent, std::span<const std::byte> bytes) {
    const TransferOutcome outcome = image_->write(bytes);
    flushing_->stored(extent, outcome);
    return outcome;
}

TransferOutcome HashingSink::store(const BlockExtent& extent, std::span<const std::byte> bytes) {
    blocks_.settle();
    const TransferOutcome outcome = inner_.store(extent, bytes);
    hashedAll_ = hashing_.finish(bytes);
    return outcome;
}

} // namespace torvane
