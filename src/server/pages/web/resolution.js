// Keeps the motion smooth where WebGL runs in software: while frames come slower than about
// 30 a second the scene is drawn with fewer pixels (down to half the width and height), and
// while they come quickly it is drawn finer again, up to the screen's own density.

const slowMs = 36;    // slower than about 28 frames a second
const quickMs = 24;   // quicker than about 42
const slowRun = 8;    // frames in a row before drawing coarser
const quickRun = 90;  // before drawing finer again: coarser is cheap to try, finer is not
const lowest = 0.5;

export class Resolution {
    /** `apply(ratio)` sets the drawing buffer's pixel ratio; `best` is where it starts and ends. */
    constructor(best, apply) {
        this.best = best;
        this.ratio = best;
        this.apply = apply;
        this.slow = 0;
        this.quick = 0;
        apply(best);
    }

    /** Hears the time since the last frame, in milliseconds. */
    frame(interval) {
        if (interval > slowMs) {
            this.quick = 0;
            if (++this.slow >= slowRun && this.ratio > lowest) {
                this.#set(Math.max(lowest, this.ratio * 0.8));
                this.slow = 0;
            }
        } else if (interval < quickMs) {
            this.slow = 0;
            if (++this.quick >= quickRun && this.ratio < this.best) {
                this.#set(Math.min(this.best, this.ratio * 1.15));
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
    }
}
