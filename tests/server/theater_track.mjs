// The 3D page's reading of a flight, in node: what the readouts show, how the path is thinned
// for drawing, and which documents are refused. Reports one object of findings.
import path from 'node:path';
import { pathToFileURL } from 'node:url';
import { report } from '../web/browser.mjs';

const source = process.env.AEROLOOM_SOURCE_DIR ?? process.cwd();
const { Track, TrackError, ease } = await import(pathToFileURL(path.join(source, 'src/server/pages/web/track.js')));
const { Resolution } = await import(pathToFileURL(path.join(source, 'src/server/pages/web/resolution.js')));

const sample = (t, north, east, extra = {}) => ({
    t, lat: 46 + north / 111195, lon: 7 + east / (111195 * Math.cos(46 * Math.PI / 180)),
    relAlt: 30, absAlt: 530, yaw: 0, pitch: 0, roll: 0, speed: 5, climb: 0, ...extra,
});
const out = {};

// A straight, level line: every sample but the ends can go from the drawing, yet a gust of speed
// in the middle must still reach the readout.
{
    const line = Array.from({ length: 101 }, (_, i) => sample(i / 10, i, 0, i === 50 ? { speed: 23 } : {}));
    const track = Track.fromFlight({ track: line });
    out.lineDrawn = track.decimate().length;
    out.speedAtGust = track.at(5).speed;
    out.speedHalfwayToGust = track.at(4.95).speed;
    out.altitude = track.at(3).altitude;
}

// Long and winding, 72,000 samples at 30 Hz: the drawing stays small and close to the path.
{
    const n = 72000;
    const wavy = Array.from({ length: n }, (_, i) => {
        const t = i / 30;
        return sample(t, 400 * Math.sin(t / 40) + 3 * Math.sin(t * 2), 300 * Math.cos(t / 55), { relAlt: 40 + 25 * Math.sin(t / 17) });
    });
    const track = Track.fromFlight({ track: wavy });
    const kept = track.decimate(0.5, 6000);
    out.wavyDrawn = kept.length;
    out.wavyEnds = kept[0] === 0 && kept[kept.length - 1] === n - 1;
    // How far any sample lies from the drawn line between the kept samples around it.
    const p = track.position;
    let worst = 0;
    for (let k = 0; k + 1 < kept.length; ++k) {
        const a = kept[k], b = kept[k + 1];
        const d = [0, 1, 2].map((c) => p[b * 3 + c] - p[a * 3 + c]);
        const len2 = d[0] ** 2 + d[1] ** 2 + d[2] ** 2;
        for (let i = a + 1; i < b; ++i) {
            const q = [0, 1, 2].map((c) => p[i * 3 + c] - p[a * 3 + c]);
            const u = len2 ? Math.min(1, Math.max(0, (q[0] * d[0] + q[1] * d[1] + q[2] * d[2]) / len2)) : 0;
            worst = Math.max(worst, Math.hypot(q[0] - u * d[0], q[1] - u * d[1], q[2] - u * d[2]));
        }
    }
    out.wavyWorstMetres = worst;
    out.wavyTolerance = kept.length < 6000 ? 0.5 : null;
    // Looking samples up in order and out of order gives the same answers as counting.
    let wrong = 0;
    for (const t of [0, 0.01, 1.5, 1.51, 2399.9, 12.34, 600, 600.02, 5, 2400, 3000, -1]) {
        let expect = 0;
        while (expect + 1 < n && track.t[expect + 1] <= t) ++expect;
        if (track.indexAt(t) !== expect) ++wrong;
    }
    out.wavyLookupsWrong = wrong;
}

// Headings turn the short way across north; a missing altitude falls back on the absolute one.
{
    const turning = [sample(0, 0, 0, { yaw: 350 }), sample(1, 0, 0, { yaw: 10 })];
    out.headingAcrossNorth = ((Track.fromFlight({ track: turning }).at(0.5).heading % 360) + 360) % 360;
    // The follow camera trails an aircraft circling the same way for three turns at 30°/s, at
    // 60 frames a second: it stays close behind and never swings round the long way.
    let followed = 0, worstLag = 0;
    for (let frame = 1; frame <= 36 * 60; ++frame) {
        const heading = (frame / 60) * 30 % 360;
        followed = ease(followed, heading, 1.5 / 60);
        if (frame > 120) worstLag = Math.max(worstLag, Math.abs(((heading - followed) % 360 + 540) % 360 - 180));
    }
    out.followWorstLag = worstLag;
    const noRelative = [sample(0, 0, 0, { relAlt: null, absAlt: 500 }), sample(1, 1, 0, { relAlt: null, absAlt: 512 })];
    out.heightFromAbsolute = Track.fromFlight({ track: noRelative }).at(1).altitude;
    const noAltitude = [sample(0, 0, 0, { relAlt: null, absAlt: null }), sample(1, 1, 0, { relAlt: null, absAlt: null })];
    out.heightUnknown = Number.isNaN(Track.fromFlight({ track: noAltitude }).at(1).altitude);
}

// Documents: a sample without speed spoils the whole file; repeated times are passed over.
{
    const refused = (doc) => { try { Track.fromFlight(doc); return false; } catch (e) { return e instanceof TrackError; } };
    const { speed, ...withoutSpeed } = sample(1, 1, 0);
    out.refusesMissingSpeed = refused({ track: [sample(0, 0, 0), withoutSpeed] });
    out.refusesNoTrack = refused({ meta: {} }) && refused(null) && refused({ track: 'x' });
    const repeated = Track.fromFlight({ track: [sample(0, 0, 0), sample(1, 1, 0), sample(1, 2, 0), sample(0.5, 3, 0), sample(2, 4, 0)] });
    out.repeatedKept = repeated.length;
    out.repeatedRecorded = repeated.recorded;
}

// The drawing size, against stand-ins for a machine whose frame time grows with the pixels
// drawn, and one whose time goes elsewhere (the video): both run at about 25 frames a second,
// unevenly, as the machine's other work makes them.
{
    const run = (cost, frames, from = null) => {
        const resolution = from ?? new Resolution(1, () => {});
        for (let i = 0; i < frames; ++i) resolution.frame(cost(resolution.ratio, i) + (i % 2 ? -9 : 9));
        return resolution;
    };
    const pixelBound = run((r) => 12 + 28 * r * r, 2000);
    out.pixelBoundRatio = pixelBound.ratio;
    out.recoveredRatio = run(() => 15, 3000, pixelBound).ratio;
    out.elsewhereRatio = run(() => 40, 2000).ratio;
    out.stalledRatio = run((r, i) => (i % 50 === 49 ? 5000 : 17), 600).ratio;
}
report(out);
