// Keeps the motion smooth where WebGL runs in software: while frames come slower than about
// 30 a second the scene is drawn with fewer pixels (down to half the width and height), and
// while they come quickly it is drawn finer again, up to the screen's own density. It follows
// the frame time's running average: single frames come and go with the machine's other work,
// and a rate that hovers just under 30 must still count as slow. Each step down is a trial:
// when the frames don't come noticeably quicker for it (the time goes to the video or the
// machine, not to the pixels), the old size comes back and stays until frames come quickly.

const slowMs = 34;      // slower than about 29 frames a second
const quickMs = 22;     // quicker than about 45
const smoothing = 0.1;  // the weight of the newest frame in the average
const slowRun = 15;     // frames of a slow average before drawing coarser
const settleRun = 30;   // frames at a coarser size before judging it
const worthIt = 1.1;    // how much quicker a coarser size must make the frames to be kept
const quickRun = 120;   // before drawing finer again: coarser is cheap to try, finer is not
const lowest = 0.5;

export class Resolution {
    /** `apply(ratio)` sets the drawing buffer's pixel ratio; `best` is where it starts and ends. */
    constructor(best, apply) {
        this.best = best;
        this.ratio = best;
        this.apply = apply;
        this.floor = lowest;
        this.trial = null;
        this.average = null;
        this.slow = 0;
        this.quick = 0;
        apply(best);
    }

    /** Hears the time since the last frame, in milliseconds. */
    frame(interval) {
        // A page in the background or a stalled tab says nothing about drawing.
        if (interval > 1000)
            return;
        this.average = this.average === null ? interval : this.average + smoothing * (interval - this.average);
        if (this.trial) {
            if (++this.trial.frames < settleRun)
                return;
            const { from, before } = this.trial;
            this.trial = null;
            if (before / this.average < worthIt) {
                this.floor = from;
                this.#set(from);
            }
            return;
        }
        if (this.average > slowMs) {
            this.quick = 0;
            if (++this.slow >= slowRun && this.ratio > this.floor) {
                this.trial = { from: this.ratio, before: this.average, frames: 0 };
                this.#set(Math.max(this.floor, this.ratio * 0.85));
            }
        } else if (this.average < quickMs) {
            this.slow = 0;
            if (++this.quick >= quickRun) {
                this.floor = lowest;
                if (this.ratio < this.best)
                    this.#set(Math.min(this.best, this.ratio * 1.1));
                this.quick = 0;
            }
        } else {
            this.slow = 0;
            this.quick = 0;
        }
    }

    #set(ratio) {
        this.ratio = ratio;
        this.apply(ratio);
        // The frames drawn at the old size say nothing of the new one.
        this.average = null;
        this.slow = 0;
        this.quick = 0;
    }
}
