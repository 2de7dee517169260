// The aircraft: a small quadcopter with a bright nose, turned to its heading and tilted by its
// pitch and roll, with a line down to its shadow on the ground. It is drawn a little larger the
// further the camera is, so it never shrinks to a dot over a long flight.
import * as THREE from './three.module.min.js';

const rad = Math.PI / 180;

function quadcopter() {
    const model = new THREE.Group();
    const shell = new THREE.MeshLambertMaterial({ color: 0xdfe6f2 });
    const dark = new THREE.MeshLambertMaterial({ color: 0x2b3550 });
    const nose = new THREE.MeshLambertMaterial({ color: 0xffa04d, emissive: 0x6a3000 });
    const rotor = new THREE.MeshBasicMaterial({ color: 0x9fd8ff, transparent: true, opacity: 0.35, depthWrite: false });

    const body = new THREE.Mesh(new THREE.BoxGeometry(0.5, 0.22, 0.9), shell);
    model.add(body);
    const camera = new THREE.Mesh(new THREE.SphereGeometry(0.13, 12, 8), dark);
    camera.position.set(0, -0.14, -0.42);
    model.add(camera);
    // The nose is the front (−z in the model): the heading is read from it.
    const cone = new THREE.Mesh(new THREE.ConeGeometry(0.16, 0.45, 12), nose);
    cone.rotation.x = -Math.PI / 2;
    cone.position.set(0, 0.05, -0.66);
    model.add(cone);
    for (const [x, z] of [[0.6, -0.55], [-0.6, -0.55], [0.6, 0.55], [-0.6, 0.55]]) {
        const arm = new THREE.Mesh(new THREE.BoxGeometry(0.07, 0.06, Math.hypot(x, z) * 2), dark);
        arm.position.set(x / 2, 0, z / 2);
        arm.rotation.y = Math.atan2(x, z);
        model.add(arm);
        const disc = new THREE.Mesh(new THREE.CylinderGeometry(0.36, 0.36, 0.02, 24), rotor);
        disc.position.set(x, 0.08, z);
        model.add(disc);
    }
    return model;
}

export class Aircraft {
    constructor(scene, groundHeight) {
        this.model = quadcopter();
        this.model.rotation.order = 'YXZ';
        scene.add(this.model);
        this.groundHeight = groundHeight;

        this.dropGeometry = new THREE.BufferGeometry();
        this.dropGeometry.setAttribute('position', new THREE.BufferAttribute(new Float32Array(6), 3));
        this.drop = new THREE.Line(this.dropGeometry,
                                   new THREE.LineBasicMaterial({ color: 0xffa04d, transparent: true, opacity: 0.5 }));
        this.drop.frustumCulled = false;
        scene.add(this.drop);

        this.shadow = new THREE.Mesh(new THREE.CircleGeometry(1, 24),
                                     new THREE.MeshBasicMaterial({ color: 0x000000, transparent: true, opacity: 0.35,
                                                                   depthWrite: false }));
        this.shadow.rotation.x = -Math.PI / 2;
        scene.add(this.shadow);
    }

    /** Puts the aircraft where `state` says, sized for a camera `distance` metres away. */
    update(state, distance) {
        const scale = Math.max(1, distance * 0.04);
        this.model.scale.setScalar(scale);
        this.model.position.set(state.x, state.y, state.z);
        // Headings turn clockwise from north; the scene turns counter-clockwise about "up".
        this.model.rotation.set(state.pitch * rad, -state.heading * rad, -state.roll * rad);

        const ground = this.groundHeight + 0.1;
        const p = this.dropGeometry.attributes.position;
        p.setXYZ(0, state.x, state.y, state.z);
        p.setXYZ(1, state.x, ground, state.z);
        p.needsUpdate = true;
        this.shadow.position.set(state.x, ground, state.z);
        this.shadow.scale.setScalar(scale * 0.8);
    }
}
