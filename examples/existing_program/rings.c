/*
 * rings.c: interlocked rings that turn, in plain OpenGL 1.1 and GLUT.
 * Stands for the many programs that exist already: it knows nothing of any chain.
 */
#include <GL/glut.h>

#include <math.h>
#include <stdio.h>
#include <stdlib.h>

typedef float real;
typedef struct { real x, y, z; } point;
typedef unsigned long count_t;

#define RINGS 5
#define FRAMES 4
#define TWO_PI 6.28318530718

static GLuint ring_list;
static count_t frame;
static real angle;

static void put_point(double around, double across)
{
    point normal, vertex;
    normal.x = (real)(cos(across) * cos(around));
    normal.y = (real)(cos(across) * sin(around));
    normal.z = (real)sin(across);
    vertex.x = (real)cos(around) + 0.2f * normal.x;
    vertex.y = (real)sin(around) + 0.2f * normal.y;
    vertex.z = 0.2f * normal.z;
    glNormal3fv(&normal.x);
    glVertex3fv(&vertex.x);
}

static void make_ring(void)
{
    int i, j;
    ring_list = glGenLists(1);
    glNewList(ring_list, GL_COMPILE);
    for (i = 0; i < 24; i++) {
        glBegin(GL_QUAD_STRIP);
        for (j = 0; j <= 12; j++) {
            put_point(TWO_PI * i / 24, TWO_PI * j / 12);
            put_point(TWO_PI * (i + 1) / 24, TWO_PI * j / 12);
        }
        glEnd();
    }
    glEndList();
}

static void make_texture(void)
{
    GLubyte *texels = (GLubyte *)malloc(16 * 16 * 3);
    void *data = texels;
    int i;
    for (i = 0; i < 16 * 16; i++)
        texels[3 * i] = texels[3 * i + 1] = texels[3 * i + 2] = ((i ^ (i >> 4)) & 4) ? 255 : 150;
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexImage2D(GL_TEXTURE_2D, 0, 3, 16, 16, 0, GL_RGB, GL_UNSIGNED_BYTE, data);
    glTexImage2D(GL_PROXY_TEXTURE_2D, 0, GL_RGB, 64, 64, 0, GL_RGB, GL_UNSIGNED_BYTE, NULL);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexGeni(GL_S, GL_TEXTURE_GEN_MODE, GL_SPHERE_MAP);
    glTexGeni(GL_T, GL_TEXTURE_GEN_MODE, GL_SPHERE_MAP);
    glEnable(GL_TEXTURE_GEN_S);
    glEnable(GL_TEXTURE_GEN_T);
    glEnable(GL_TEXTURE_2D);
    free(data);
}

static void display(void)
{
    static GLfloat colors[RINGS][4] = {
        { 0.1, 0.3, 0.9, 1 }, { 0.9, 0.8, 0.1, 1 }, { 0.2, 0.2, 0.2, 1 }, { 0.1, 0.7, 0.2, 1 }, { 0.9, 0.1, 0.1, 1 }
    };
    int i;
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    for (i = 0; i < RINGS; i++) {
        glPushMatrix();
        glTranslatef(1.25 * (i - 2), i & 1 ? -0.7 : 0.5, 0);
        glRotatef(angle + 20 * i, 0, 1, 0);
        glMaterialfv(GL_FRONT, GL_AMBIENT_AND_DIFFUSE, colors[i]);
        glCallList(ring_list);
        glPopMatrix();
    }
    glutSwapBuffers();
}

static void idle(void)
{
    if (++frame == FRAMES)
        exit(0);
    angle += 15;
    glutPostRedisplay();
}

static void reshape(int width, int height)
{
    GLdouble half = (GLdouble)height / width;
    glViewport(0, 0, width, height);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glFrustum(-1, 1, -half, half, 2, 20);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glTranslatef(0, 0, -8);
}

int main(int argc, char **argv)
{
    glutInit(&argc, argv);
    glutInitDisplayMode(GLUT_RGB | GLUT_DOUBLE | GLUT_DEPTH);
    glutInitWindowSize(480, 320);
    glutCreateWindow("rings");
    printf("rings on %s\n", (const char *)glGetString(GL_RENDERER));

    glEnable(GL_DEPTH_TEST);
    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0);
    glEnable(GL_NORMALIZE);
    make_ring();
    make_texture();

    glutDisplayFunc(display);
    glutReshapeFunc(reshape);
    glutIdleFunc(idle);
    glutMainLoop();
    return 0;
}
