// The camera: behind the aircraft looking where it heads ("follow"), circling it ("orbit"), or
// above the whole path ("overview"). Dragging turns and tilts the view in every mode, the wheel
// brings it nearer or further; the camera glides to where it should be rather than jumping.
import * as THREE from './three.module.min.js';
import { ease } from './track.js';

const rad = Math.PI / 180;

export class CameraRig {
    /** `size` is the path's extent in metres, `centre` the middle of its box. */
    constructor(camera, element, size, centre) {
        this.camera = camera;
        this.mode = 'follow';
        this.size = size;
        this.centre = new THREE.Vector3(...centre);
        this.near = Math.min(120, Math.max(25, size * 0.08));
        this.zoom = 1;
        this.turn = 0;        // degrees added by dragging
        this.tilt = 22;       // degrees above the horizon
        this.spin = 0;        // the orbit's own turning, degrees
        this.heading = null;  // the heading the follow camera trails, smoothed
        this.target = new THREE.Vector3();
        this.look = new THREE.Vector3();
        this.wanted = new THREE.Vector3();
        this.first = true;
        this.#listen(element);
    }

    setMode(mode) {
        this.mode = mode;
        this.turn = 0;
        this.zoom = 1;
        this.tilt = mode === 'overview' ? 50 : mode === 'orbit' ? 28 : 22;
    }

    /** How far the camera stands from what it looks at, in metres. */
    distance() {
        return this.camera.position.distanceTo(this.look);
    }

    /** Moves the camera a frame on, `dt` seconds after the last, toward the aircraft at `state`. */
    update(state, dt) {
        let heading, reach;
        if (this.mode === 'overview') {
            this.target.copy(this.centre);
            heading = 20;
            reach = Math.max(60, this.size * 1.5);
        } else {
            this.target.set(state.x, state.y, state.z);
            if (this.mode === 'orbit') {
                this.spin = (this.spin + dt * 12) % 360;
                heading = this.spin;
            } else {
                // The heading is followed softly, so a quick pan of the aircraft does not whip the view.
                this.heading = this.heading === null ? state.heading : ease(this.heading, state.heading, Math.min(1, dt * 1.5));
                heading = this.heading;
            }
            reach = this.near;
        }
        const h = (heading + this.turn) * rad, v = this.tilt * rad, r = reach * this.zoom;
        // Behind: opposite to the heading, which points north (−z) at 0° and east (+x) at 90°.
        this.wanted.set(this.target.x - Math.sin(h) * Math.cos(v) * r, this.target.y + Math.sin(v) * r,
                        this.target.z + Math.cos(h) * Math.cos(v) * r);
        const first = this.first;
        this.first = false;
        this.camera.position.lerp(this.wanted, first ? 1 : Math.min(1, dt * 4));
        this.look.lerp(this.target, first ? 1 : Math.min(1, dt * 10));
        this.camera.lookAt(this.look);
    }

    #listen(element) {
        let from = null;
        element.addEventListener('pointerdown', (e) => {
            from = { x: e.clientX, y: e.clientY };
            element.setPointerCapture(e.pointerId);
        });
        element.addEventListener('pointermove', (e) => {
            if (!from) return;
            this.turn -= (e.clientX - from.x) * 0.3;
            this.tilt = Math.min(85, Math.max(3, this.tilt + (e.clientY - from.y) * 0.2));
            from = { x: e.clientX, y: e.clientY };
        });
        const end = () => { from = null; };
        element.addEventListener('pointerup', end);
        element.addEventListener('pointercancel', end);
        element.addEventListener('wheel', (e) => {
            e.preventDefault();
            this.zoom = Math.min(8, Math.max(0.15, this.zoom * Math.exp(e.deltaY * 0.001)));
        }, { passive: false });
    }
}
