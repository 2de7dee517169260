// The 3D theater: one flight of the library flown again over its ground, with its video in a
// corner in step with the aircraft. Address: theater.html?id=<flight>[&units=metric][&tiles=<template>]
// The flight's files come from this library with the page's own session; the ground's tiles
// from the template's host when it answers.
import * as THREE from './three.module.min.js';
import { Aircraft } from './aircraft.js';
import { CameraRig } from './camera.js';
import { Controls } from './controls.js';
import { Ground, tileTemplate } from './ground.js';
import { Playback } from './playback.js';
import { Resolution } from './resolution.js';
import { State, Track, TrackError } from './track.js';

const root = document.documentElement;
const params = new URLSearchParams(location.search);
const id = params.get('id') ?? '';
const controls = new Controls(params.get('units') === 'metric');
const background = 0x0b1224;

/** What the page says instead of the flight, and the state the tests and the app can read. */
function stop(title, text, state = 'failed') {
    controls.notice(title, text);
    root.dataset.state = state;
}

async function fetchFlight(base) {
    let reply;
    try {
        reply = await fetch(base + 'flight.json', { credentials: 'same-origin', cache: 'no-store' });
    } catch {
        return { failure: ['The library can’t be reached.', 'Check that it is running, then open the flight again.'] };
    }
    if (reply.status === 401 || reply.status === 403)
        return { failure: ['Sign in to watch this flight in 3D',
                           'Open the flight from Aeroloom, which signs you in, or sign in to the library first.'],
                 state: 'signin' };
    if (reply.status === 404)
        return { failure: ['This flight isn’t in your library.', 'It may have been deleted.'] };
    if (!reply.ok)
        return { failure: ['The flight couldn’t be loaded.', `The library answered ${reply.status}.`] };
    try {
        return { doc: await reply.json() };
    } catch {
        return { failure: ['The flight couldn’t be loaded.', 'The flight’s telemetry couldn’t be read.'] };
    }
}

/** The path in two parts: bright where the aircraft has been, dim where it is going. */
function pathLines(scene, track, kept) {
    const points = new Float32Array(kept.length * 3);
    const times = new Float64Array(kept.length);
    for (let k = 0; k < kept.length; ++k) {
        const i = kept[k];
        points.set(track.position.subarray(i * 3, i * 3 + 3), k * 3);
        times[k] = track.t[i];
    }
    // Two geometries over one buffer: each part has its own range of the same points.
    const buffer = new THREE.BufferAttribute(points, 3);
    const geometry = () => new THREE.BufferGeometry().setAttribute('position', buffer);
    const ahead = new THREE.Line(geometry(), new THREE.LineBasicMaterial({ color: 0x8e9bb8, transparent: true, opacity: 0.6 }));
    const flown = new THREE.Line(geometry(), new THREE.LineBasicMaterial({ color: 0x46b8ff }));
    scene.add(ahead, flown);
    // The bright line's last piece reaches from the last kept sample to the aircraft itself.
    const tail = new THREE.BufferGeometry();
    tail.setAttribute('position', new THREE.BufferAttribute(new Float32Array(6), 3));
    const tailLine = new THREE.Line(tail, flown.material);
    tailLine.frustumCulled = false;
    scene.add(tailLine);
    return (state) => {
        let lo = 0, hi = times.length - 1;
        while (hi - lo > 1) {
            const mid = (lo + hi) >> 1;
            if (times[mid] <= state.t) lo = mid;
            else hi = mid;
        }
        flown.geometry.setDrawRange(0, lo + 1);
        ahead.geometry.setDrawRange(lo, times.length - lo);
        const p = tail.attributes.position;
        p.setXYZ(0, points[lo * 3], points[lo * 3 + 1], points[lo * 3 + 2]);
        p.setXYZ(1, state.x, state.y, state.z);
        p.needsUpdate = true;
    };
}

/**
 * Heights at a glance: thin posts from the path down to the ground along the flight, at most
 * `most` of them, and the path's shadow on the ground. Lines only, and few: software GL pays
 * for every line it draws.
 */
function posts(scene, track, kept, ground, most) {
    const p = track.position;
    const step = (k) => {
        const i = kept[k], j = kept[k - 1];
        return Math.hypot(p[i * 3] - p[j * 3], p[i * 3 + 1] - p[j * 3 + 1], p[i * 3 + 2] - p[j * 3 + 2]);
    };
    let length = 0;
    for (let k = 1; k < kept.length; ++k) length += step(k);
    const spacing = Math.max(4, length / most);
    const tops = [];
    let since = Infinity;
    for (let k = 0; k < kept.length; ++k) {
        if (k > 0) since += step(k);
        if (since >= spacing) {
            tops.push(kept[k]);
            since = 0;
        }
    }
    const lines = new Float32Array(tops.length * 6);
    tops.forEach((i, n) => lines.set([p[i * 3], p[i * 3 + 1], p[i * 3 + 2], p[i * 3], ground, p[i * 3 + 2]], n * 6));
    const postGeometry = new THREE.BufferGeometry();
    postGeometry.setAttribute('position', new THREE.BufferAttribute(lines, 3));
    scene.add(new THREE.LineSegments(postGeometry, new THREE.LineBasicMaterial({
        color: 0x46b8ff, transparent: true, opacity: 0.22, depthWrite: false })));

    const shadow = new Float32Array(kept.length * 3);
    kept.forEach((i, k) => shadow.set([p[i * 3], ground + 0.1, p[i * 3 + 2]], k * 3));
    const shadowGeometry = new THREE.BufferGeometry();
    shadowGeometry.setAttribute('position', new THREE.BufferAttribute(shadow, 3));
    scene.add(new THREE.Line(shadowGeometry, new THREE.LineBasicMaterial({
        color: 0x8e9bb8, transparent: true, opacity: 0.35, depthWrite: false })));
}

function start(doc, track, base) {
    const canvas = document.getElementById('scene');
    const renderer = new THREE.WebGLRenderer({ canvas, antialias: false, powerPreference: 'high-performance' });
    renderer.setClearColor(background);
    const scene = new THREE.Scene();
    scene.add(new THREE.HemisphereLight(0xdde8ff, 0x20283a, 2.2));
    const sun = new THREE.DirectionalLight(0xffffff, 1.6);
    sun.position.set(60, 100, 40);
    scene.add(sun);

    const { min, max } = track.bounds();
    const size = Math.max(max[0] - min[0], max[2] - min[2], max[1] - min[1], 10);
    const groundHeight = Math.min(0, min[1]);
    const camera = new THREE.PerspectiveCamera(55, 1, 0.5, size * 20 + 5000);
    scene.fog = new THREE.Fog(background, size * 4 + 800, size * 18 + 4000);

    const ground = new Ground(scene, track, groundHeight, tileTemplate(params.get('tiles')), (state) => {
        root.dataset.ground = state;
        controls.showAttribution(state === 'tiles');
    });
    root.dataset.ground ??= 'grid';
    // The drawing may stray from the path by a pixel's worth at the distance the path is seen from.
    const kept = track.decimate(Math.max(0.5, size / 2000), 3000);
    const drawTrail = pathLines(scene, track, kept);
    posts(scene, track, kept, groundHeight, 300);
    const aircraft = new Aircraft(scene, groundHeight);
    const rig = new CameraRig(camera, canvas, size, [(min[0] + max[0]) / 2, (min[1] + max[1]) / 2, (min[2] + max[2]) / 2]);

    const video = document.getElementById('video');
    video.poster = base + 'thumb.jpg';
    // The server names the flight's lighter video here when it has one. A pilot who plays in
    // high quality gets the full proxy, and so does one whose lighter file won't play.
    const full = 'proxy.mp4';
    const file = params.get('quality') === 'hq' ? full : (video.dataset.file || full);
    video.src = base + file;
    document.getElementById('videoBox').hidden = false;
    const playback = new Playback(video, track.end, file === full ? null : base + full);
    playback.onVideoLost = () => { document.getElementById('videoBox').hidden = true; };
    controls.showFlight(doc.meta, id, track.end);
    controls.bind(playback, rig);

    const resize = () => {
        const w = canvas.clientWidth, h = canvas.clientHeight;
        renderer.setSize(w, h, false);
        camera.aspect = w / Math.max(1, h);
        camera.updateProjectionMatrix();
    };
    window.addEventListener('resize', resize);
    const resolution = new Resolution(Math.min(window.devicePixelRatio, 1.5), (ratio) => {
        renderer.setPixelRatio(ratio);
        resize();
    });

    const state = new State();
    const stats = { frames: 0 };
    let last = performance.now();
    const frame = (now) => {
        const dt = Math.min(0.25, Math.max(0, (now - last) / 1000));
        resolution.frame(now - last);
        last = now;
        track.at(playback.tick(dt), state);
        drawTrail(state);
        rig.update(state, dt);
        aircraft.update(state, rig.distance());
        controls.update(state, now);
        renderer.render(scene, camera);
        ++stats.frames;
        requestAnimationFrame(frame);
    };
    requestAnimationFrame(frame);

    // What a test or a benchmark reads of the page: its counts, its clock, and whether the
    // scene draws anything but the background.
    window.theater = {
        stats: () => ({
            samples: track.recorded, drawn: kept.length, frames: stats.frames, time: playback.position,
            videoTime: video.currentTime, playing: playback.playing, ground: root.dataset.ground,
            pixelRatio: resolution.ratio, tilesWanted: ground.wanted, tilesLoaded: ground.loaded, tilesFailed: ground.failed, tileZoom: ground.zoom ?? null,
        }),
        // The share of pixels unlike the background, and how many colours the picture holds.
        picture: () => {
            renderer.render(scene, camera);
            const gl = renderer.getContext();
            const w = gl.drawingBufferWidth, h = gl.drawingBufferHeight;
            const pixels = new Uint8Array(w * h * 4);
            gl.readPixels(0, 0, w, h, gl.RGBA, gl.UNSIGNED_BYTE, pixels);
            // The clear colour as it lands in the canvas: the sRGB bytes, not three.js's linear floats.
            const [r, g, b] = [16, 8, 0].map((shift) => (background >> shift) & 0xff);
            let differ = 0;
            const colours = new Set();
            for (let i = 0; i < pixels.length; i += 4) {
                if (Math.abs(pixels[i] - r) + Math.abs(pixels[i + 1] - g) + Math.abs(pixels[i + 2] - b) > 6) ++differ;
                colours.add((pixels[i] >> 4) << 8 | (pixels[i + 1] >> 4) << 4 | pixels[i + 2] >> 4);
            }
            return { share: differ / (w * h), colours: colours.size };
        },
    };
    root.dataset.samples = String(track.recorded);
    root.dataset.state = 'ready';
    playback.play();
}

async function main() {
    if (!id || id.length > 128 || id.startsWith('.') || /[\/\\\u0000-\u001f]/.test(id))
        return stop('No flight to show.', 'The address names no flight of the library.');
    const base = `flights/${encodeURIComponent(id)}/`;
    const { doc, failure, state } = await fetchFlight(base);
    if (failure)
        return stop(...failure, state);
    let track;
    try {
        track = Track.fromFlight(doc);
    } catch (e) {
        if (e instanceof TrackError)
            return stop('The flight couldn’t be loaded.', e.message);
        throw e;
    }
    if (track.length < 2)
        return stop('This flight has no path to fly.', 'Its telemetry holds no GPS positions.', 'empty');
    start(doc, track, base);
}

main().catch((e) => {
    stop('The 3D view couldn’t start.', 'This browser may not draw 3D (WebGL).');
    console.error(e);
});
