// A flight's telemetry as the theater flies it: every sample kept for the readouts and the
// aircraft, positions in metres around the take-off point, and a lighter copy of the path for
// drawing only. Nothing here touches the page, so node can run it as well as a browser.

const earthRadius = 6371008.8;
const rad = Math.PI / 180;

/** A flight.json that can't be flown: its words are shown on the page. */
export class TrackError extends Error {}

const isNumber = (v) => typeof v === 'number' && Number.isFinite(v);
const optional = (v) => (isNumber(v) ? v : NaN);

/** The difference b − a of two headings, in (−180, 180]. */
export function turn(a, b) {
    let d = (b - a) % 360;
    if (d > 180) d -= 360;
    if (d <= -180) d += 360;
    return d;
}

/** `current` moved `share` of the short way toward `target`, in [0, 360): a heading followed softly. */
export function ease(current, target, share) {
    const next = (current + turn(current, target) * share) % 360;
    return next < 0 ? next + 360 : next;
}

/** One moment of the flight; `Track.at` fills the same object again and again. */
export class State {
    constructor() {
        this.t = 0;
        this.index = 0;
        this.x = 0;
        this.y = 0;
        this.z = 0;
        this.heading = 0;
        this.pitch = 0;
        this.roll = 0;
        this.speed = 0;
        this.altitude = NaN;
    }
}

export class Track {
    #extent = null;  // bounds(), worked out once

    /**
     * Reads the `track` of a flight.json. The keys the format requires of a sample (t, lat, lon,
     * speed, climb) must be numbers, or the whole document is refused; samples whose time does
     * not move forward are passed over.
     */
    static fromFlight(doc) {
        if (!doc || typeof doc !== 'object' || !Array.isArray(doc.track))
            throw new TrackError('The flight’s telemetry couldn’t be read.');
        const kept = [];
        let last = -Infinity;
        for (const s of doc.track) {
            if (!s || typeof s !== 'object' || !isNumber(s.t) || !isNumber(s.lat) || !isNumber(s.lon)
                || !isNumber(s.speed) || !isNumber(s.climb) || Math.abs(s.lat) > 90 || Math.abs(s.lon) > 180)
                throw new TrackError('The flight’s telemetry couldn’t be read.');
            if (s.t <= last)
                continue;
            last = s.t;
            kept.push(s);
        }
        return new Track(kept, doc.track.length);
    }

    constructor(samples, recorded = samples.length) {
        const n = samples.length;
        this.length = n;
        this.recorded = recorded;
        this.t = new Float64Array(n);
        this.position = new Float64Array(n * 3);
        this.speed = new Float64Array(n);
        this.heading = new Float64Array(n);
        this.pitch = new Float64Array(n);
        this.roll = new Float64Array(n);
        this.origin = n ? { lat: samples[0].lat, lon: samples[0].lon } : { lat: 0, lon: 0 };
        this.metresPerLon = earthRadius * rad * Math.cos(this.origin.lat * rad);
        this.metresPerLat = earthRadius * rad;
        this.altitudeKnown = false;

        const heights = this.#heights(samples);
        for (let i = 0; i < n; ++i) {
            const s = samples[i];
            this.t[i] = s.t;
            this.position[i * 3] = (s.lon - this.origin.lon) * this.metresPerLon;
            this.position[i * 3 + 1] = heights[i];
            this.position[i * 3 + 2] = -(s.lat - this.origin.lat) * this.metresPerLat;
            this.speed[i] = s.speed;
            this.heading[i] = optional(s.yaw);
            this.pitch[i] = isNumber(s.pitch) ? s.pitch : 0;
            this.roll[i] = isNumber(s.roll) ? s.roll : 0;
        }
        this.#fillHeadings();
        this.start = n ? this.t[0] : 0;
        this.end = n ? this.t[n - 1] : 0;
        this.hint = 0;
    }

    /**
     * Heights above the take-off point: the relative altitude where the aircraft gave one (a gap
     * holds the last value), else the absolute one less the first, else the ground.
     */
    #heights(samples) {
        const n = samples.length;
        const out = new Float64Array(n);
        const pick = (key, offset) => {
            let first = -1;
            for (let i = 0; i < n && first < 0; ++i)
                if (isNumber(samples[i][key])) first = i;
            if (first < 0)
                return false;
            const base = offset ? samples[first][key] : 0;
            let held = samples[first][key] - base;
            for (let i = 0; i < n; ++i) {
                if (isNumber(samples[i][key]))
                    held = samples[i][key] - base;
                out[i] = held;
            }
            return true;
        };
        this.altitudeKnown = pick('relAlt', false) || pick('absAlt', true);
        return out;
    }

    /** Samples without a heading face where the aircraft moves, or keep the last heading. */
    #fillHeadings() {
        const n = this.length;
        let held = NaN;
        for (let i = 0; i < n; ++i) {
            if (!Number.isNaN(this.heading[i])) {
                held = this.heading[i];
                continue;
            }
            const a = Math.max(0, i - 1), b = Math.min(n - 1, i + 1);
            const dx = this.position[b * 3] - this.position[a * 3];
            const dz = this.position[b * 3 + 2] - this.position[a * 3 + 2];
            if (Math.hypot(dx, dz) > 0.3)
                held = Math.atan2(dx, -dz) / rad;
            this.heading[i] = Number.isNaN(held) ? 0 : held;
        }
    }

    /** Metres east and south of the take-off point for a place. */
    local(lat, lon) {
        return { x: (lon - this.origin.lon) * this.metresPerLon, z: -(lat - this.origin.lat) * this.metresPerLat };
    }

    /** The place at metres east and south of the take-off point. */
    geo(x, z) {
        return { lat: this.origin.lat - z / this.metresPerLat, lon: this.origin.lon + x / this.metresPerLon };
    }

    /** The box around the path: min and max of x, y, z (the same object each time). */
    bounds() {
        if (this.#extent)
            return this.#extent;
        const min = [Infinity, Infinity, Infinity], max = [-Infinity, -Infinity, -Infinity];
        for (let i = 0; i < this.length; ++i)
            for (let k = 0; k < 3; ++k) {
                const v = this.position[i * 3 + k];
                if (v < min[k]) min[k] = v;
                if (v > max[k]) max[k] = v;
            }
        this.#extent = { min, max };
        return this.#extent;
    }

    /** The last sample at or before `t` (0 before the first). */
    indexAt(t) {
        const n = this.length;
        if (n === 0 || t <= this.t[0])
            return 0;
        if (t >= this.t[n - 1])
            return n - 1;
        // Playback moves forward a little each frame: try where the last answer was first.
        const h = this.hint;
        if (h < n - 1 && this.t[h] <= t && t < this.t[h + 1])
            return h;
        if (h + 1 < n - 1 && this.t[h + 1] <= t && t < this.t[h + 2])
            return (this.hint = h + 1);
        let lo = 0, hi = n - 1;
        while (hi - lo > 1) {
            const mid = (lo + hi) >> 1;
            if (this.t[mid] <= t) lo = mid;
            else hi = mid;
        }
        return (this.hint = lo);
    }

    /** The flight at time `t`, between the samples around it, from every sample recorded. */
    at(t, state = new State()) {
        const n = this.length;
        if (n === 0)
            return state;
        const i = this.indexAt(t);
        const j = Math.min(i + 1, n - 1);
        const span = this.t[j] - this.t[i];
        const f = span > 0 ? Math.min(1, Math.max(0, (t - this.t[i]) / span)) : 0;
        const mix = (a, b) => a + (b - a) * f;
        const p = this.position;
        state.t = Math.min(Math.max(t, this.start), this.end);
        state.index = i;
        state.x = mix(p[i * 3], p[j * 3]);
        state.y = mix(p[i * 3 + 1], p[j * 3 + 1]);
        state.z = mix(p[i * 3 + 2], p[j * 3 + 2]);
        state.heading = this.heading[i] + turn(this.heading[i], this.heading[j]) * f;
        state.pitch = mix(this.pitch[i], this.pitch[j]);
        state.roll = mix(this.roll[i], this.roll[j]);
        state.speed = mix(this.speed[i], this.speed[j]);
        // The height drawn is the height read out, where the aircraft told it.
        state.altitude = this.altitudeKnown ? state.y : NaN;
        return state;
    }

    /**
     * The samples to draw the path with: a line through them strays at most `tolerance` metres
     * from the one through every sample, and there are at most `limit` of them (the tolerance
     * grows until they fit). The first and last samples are always kept.
     */
    decimate(tolerance = 0.5, limit = 6000) {
        let kept = this.#simplify(tolerance);
        for (let tries = 0; kept.length > limit && tries < 16; ++tries) {
            tolerance *= 2;
            kept = this.#simplify(tolerance);
        }
        return kept;
    }

    /** Douglas–Peucker in three dimensions, with a stack instead of recursion. */
    #simplify(tolerance) {
        const n = this.length;
        if (n <= 2)
            return Uint32Array.from({ length: n }, (_, i) => i);
        const p = this.position;
        const keep = new Uint8Array(n);
        keep[0] = keep[n - 1] = 1;
        const stack = [0, n - 1];
        const limit = tolerance * tolerance;
        while (stack.length) {
            const last = stack.pop(), first = stack.pop();
            const ax = p[first * 3], ay = p[first * 3 + 1], az = p[first * 3 + 2];
            const dx = p[last * 3] - ax, dy = p[last * 3 + 1] - ay, dz = p[last * 3 + 2] - az;
            const length2 = dx * dx + dy * dy + dz * dz;
            let worst = -1, worstDistance = limit;
            for (let i = first + 1; i < last; ++i) {
                const px = p[i * 3] - ax, py = p[i * 3 + 1] - ay, pz = p[i * 3 + 2] - az;
                let u = length2 > 0 ? (px * dx + py * dy + pz * dz) / length2 : 0;
                u = u < 0 ? 0 : u > 1 ? 1 : u;
                const ex = px - u * dx, ey = py - u * dy, ez = pz - u * dz;
                const distance = ex * ex + ey * ey + ez * ez;
                if (distance > worstDistance) {
                    worstDistance = distance;
                    worst = i;
                }
            }
            if (worst >= 0) {
                keep[worst] = 1;
                stack.push(first, worst, worst, last);
            }
        }
        let count = 0;
        for (let i = 0; i < n; ++i) count += keep[i];
        const out = new Uint32Array(count);
        for (let i = 0, k = 0; i < n; ++i)
            if (keep[i]) out[k++] = i;
        return out;
    }
}
