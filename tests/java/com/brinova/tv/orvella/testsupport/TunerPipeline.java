package com.brinova.tv.orvella.testsupport;

/** Stands for a tuner-pipeline object of the TV framework. */
public final class TunerPipeline {
    public final String name;

    public TunerPipeline(String name) {
        this.name = name;
    }
}
