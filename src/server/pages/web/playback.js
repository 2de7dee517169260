// The theater's clock. While the flight's video can play, the video is the clock, so the
// aircraft is always where the picture was taken; past the video's end, or without a video, the
// page keeps time itself.

export class Playback {
    /** `fallback`, when given, is the address to try once if the video's own file won't play. */
    constructor(video, duration, fallback = null) {
        this.video = video;
        this.duration = duration;
        this.position = 0;
        this.playing = false;
        this.videoFailed = !video;
        this.onChange = () => {};
        this.onVideoLost = () => {};
        if (!video)
            return;
        video.addEventListener('error', () => {
            if (fallback) {
                // The clock keeps going meanwhile; the new file joins it once it knows its length.
                video.src = fallback;
                fallback = null;
                return;
            }
            this.videoFailed = true;
            this.onVideoLost();
            this.onChange();
        });
        // The page may start before the video knows its length: it then joins the clock where it is.
        video.addEventListener('loadedmetadata', () => {
            if (!this.#videoHolds(this.position))
                return;
            video.currentTime = this.position;
            if (this.playing)
                this.#startVideo();
        });
    }

    /** The video can tell the time of `t`. */
    #videoHolds(t) {
        const v = this.video;
        return !this.videoFailed && v.readyState >= 1 && Number.isFinite(v.duration) && t < v.duration - 0.05;
    }

    /** The time in the flight `dt` seconds after the last call. */
    tick(dt) {
        if (this.#videoHolds(this.position) && !this.video.ended) {
            this.position = this.video.currentTime;
            // A video that has stopped while the theater plays (a stall, a refused start) holds
            // the aircraft with it, which is what the pilot sees.
        } else if (this.playing) {
            this.position += dt;
        }
        if (this.position >= this.duration && this.playing) {
            this.position = this.duration;
            this.pause();
        }
        return this.position;
    }

    play() {
        if (this.position >= this.duration)
            this.seek(0);
        this.playing = true;
        if (this.#videoHolds(this.position))
            this.#startVideo();
        this.onChange();
    }

    pause() {
        this.playing = false;
        if (this.video)
            this.video.pause();
        this.onChange();
    }

    toggle() {
        if (this.playing) this.pause();
        else this.play();
    }

    seek(t) {
        this.position = Math.min(Math.max(0, t), this.duration);
        if (this.#videoHolds(this.position)) {
            this.video.currentTime = this.position;
            if (this.playing && this.video.paused)
                this.#startVideo();
        } else if (this.video && !this.videoFailed) {
            this.video.pause();
        }
        this.onChange();
    }

    /** Starts the video with its sound; where a browser refuses that, without. */
    #startVideo() {
        const v = this.video;
        v.play().catch(() => {
            if (!this.playing || v.muted)
                return;
            v.muted = true;
            v.play().catch(() => this.pause());
        });
    }
}
